// Option controls that act together: a small tree of items, held by shared ownership.
#pragma once

#include <windows.h>

#include <memory>
#include <vector>

namespace pdf_settings {

class DlgContainer;

// One control of a dialog.
class DlgItem {
public:
    DlgItem(HWND dialog, int control) noexcept : dialog_(dialog), control_(control) {}
    virtual ~DlgItem() = default;

    [[nodiscard]] int control() const noexcept { return control_; }

    virtual void set_checked(bool checked);

    // Told that the user has used the control; whether its state changed.
    virtual bool on_command() { return false; }

protected:
    [[nodiscard]] HWND dialog() const noexcept { return dialog_; }

private:
    friend class DlgContainer;

    HWND dialog_;
    int control_;
    std::weak_ptr<DlgContainer> container_;
};

// Holds items in their order.
class DlgContainer : public std::enable_shared_from_this<DlgContainer> {
public:
    virtual ~DlgContainer() = default;

    void add(std::shared_ptr<DlgItem> item);

    // Passes a command on to the item of that control; what its change means is the container's to say.
    // Whether there was a change.
    bool command(int control);

protected:
    virtual void changed(DlgItem& /*item*/) {}

    [[nodiscard]] const std::vector<std::shared_ptr<DlgItem>>& items() const noexcept { return items_; }

private:
    std::vector<std::shared_ptr<DlgItem>> items_;
};

class DlgRadioButton : public DlgItem {
public:
    using DlgItem::DlgItem;

    bool on_command() override;  // a click on an unchecked one is a change
    void set_checked(bool checked) override;

private:
    bool checked_ = false;
};

// Of its radio buttons one is checked: the one that changed last.
class DlgRadioGroup : public DlgContainer {
protected:
    void changed(DlgItem& item) override;
};

}  // namespace pdf_settings

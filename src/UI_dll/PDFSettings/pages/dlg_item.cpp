#include "UI_dll/PDFSettings/pages/dlg_item.h"

#include <algorithm>

namespace pdf_settings {

void DlgItem::set_checked(bool checked) {
    CheckDlgButton(dialog_, control_, checked ? BST_CHECKED : BST_UNCHECKED);
}

void DlgContainer::add(std::shared_ptr<DlgItem> item) {
    item->container_ = weak_from_this();
    items_.push_back(std::move(item));
}

bool DlgContainer::command(int control) {
    const auto found = std::find_if(items_.begin(), items_.end(),
                                    [&](const auto& item) { return item->control() == control; });
    if (found == items_.end() || !(*found)->on_command())
        return false;
    if (const auto container = (*found)->container_.lock())
        container->changed(**found);
    return true;
}

bool DlgRadioButton::on_command() {
    return !checked_;
}

void DlgRadioButton::set_checked(bool checked) {
    checked_ = checked;
    DlgItem::set_checked(checked);
}

void DlgRadioGroup::changed(DlgItem& item) {
    for (const auto& other : items())
        if (other->control() != item.control() && dynamic_cast<DlgRadioButton*>(other.get()))
            other->set_checked(false);
    item.set_checked(true);
}

}  // namespace pdf_settings

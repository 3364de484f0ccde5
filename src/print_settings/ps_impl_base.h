// What every section of a print setting shares: the base of its values and the handle that owns them.
#pragma once

#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace Corvanta::Vantrix::PrintSettings {

// Base of the values of one section (`General_impl`, ...). Comparing and describing follow the section's
// field table: a field that is not in it is copied, but neither compared nor described.
template <class Impl>
class ps_impl_base {
public:
    virtual ~ps_impl_base() = default;

    [[nodiscard]] std::unique_ptr<Impl> clone() const {
        return std::make_unique<Impl>(static_cast<const Impl&>(*this));
    }

    // Whether every field of the table has the same value. Floats compare by value: a NaN differs from
    // itself.
    [[nodiscard]] bool equals(const Impl& other) const;

    // One sentence for a person per field whose value in `newer` is another; empty when there is none. The
    // texts come from the language library; passwords are never shown.
    [[nodiscard]] virtual std::vector<std::wstring> DiffStr(const Impl& newer) const;

    friend bool operator==(const Impl& a, const Impl& b) { return a.equals(b); }

protected:
    ps_impl_base() = default;
    ps_impl_base(const ps_impl_base&) = default;
    ps_impl_base& operator=(const ps_impl_base&) = default;
};

// Handle of one section: owns its values, which are on the heap, and copies them with itself. The values are
// the public members of `Impl`: `settings.general()->Scale` is both the getter and, on a handle that is not
// const, the setter of a field. What is set is stored as given; ranges are a matter of reading files. Moving
// copies, so that no handle is ever empty. Not for two threads at once.
template <class Impl>
class ps_handle {
public:
    using impl_type = Impl;

    ps_handle() : impl_(std::make_unique<Impl>()) {}
    ps_handle(const ps_handle& other) : impl_(other.impl_->clone()) {}
    ps_handle& operator=(const ps_handle& other) {
        ps_handle copy(other);
        swap(copy);
        return *this;
    }
    virtual ~ps_handle() = default;

    [[nodiscard]] Impl* operator->() noexcept { return impl_.get(); }
    [[nodiscard]] const Impl* operator->() const noexcept { return impl_.get(); }
    [[nodiscard]] Impl& operator*() noexcept { return *impl_; }
    [[nodiscard]] const Impl& operator*() const noexcept { return *impl_; }

    // See ps_impl_base::DiffStr.
    [[nodiscard]] std::vector<std::wstring> DiffStr(const ps_handle& newer) const {
        return impl_->DiffStr(*newer.impl_);
    }

    void swap(ps_handle& other) noexcept { impl_.swap(other.impl_); }

    friend bool operator==(const ps_handle& a, const ps_handle& b) { return *a.impl_ == *b.impl_; }

private:
    std::unique_ptr<Impl> impl_;
};

}  // namespace Corvanta::Vantrix::PrintSettings

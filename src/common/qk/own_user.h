// What the system tells about a process's own user.
#pragma once

#include <mutex>
#include <string>

#include "common/qk/lock.h"
#include "common/qk/registry.h"

namespace qk {

// A text that takes the system a while to tell and that each job asks for. It is the same for one user as
// long as the process lives, so an answer for the process's own user is kept; an empty one is not, since what
// is missing may come. A thread that acts for another user asks each time. Any thread.
class OwnUsersText {
public:
    template <class Ask>
    [[nodiscard]] std::wstring get(Ask ask) {
        if (!registry::CurrentUser::is_own())
            return ask();
        {
            const std::scoped_lock hold(lock_);
            if (!text_.empty())
                return text_;
        }
        std::wstring answer = ask();
        const std::scoped_lock hold(lock_);
        text_ = answer;
        return answer;
    }

private:
    Lock lock_;
    std::wstring text_;
};

}  // namespace qk

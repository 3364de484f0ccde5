#include <gtest/gtest.h>

#include <windows.h>

#include <cstdint>
#include <deque>
#include <mutex>
#include <set>
#include <vector>

#include "common/qk/paths.h"
#include "common/qk/text.h"
#include "common/qk/lock.h"
#include "companions/tessalo/output_choice.h"
#include "companions/thread.h"
#include "support/temp_folder.h"

namespace {

using companions::choose_unattended;
using companions::choose_with_dialog;
using companions::SameName;

TEST(OutputChoice, SameNameRulesWithNobodyWatching) {
    const struct {
        const char* label;
        int32_t code;
        bool exists;
        const wchar_t* name;  // null: refused
        bool reserved;
    } rows[] = {
        {"overwrite", 0, true, L"a.pdf", false},
        {"ask numbers", 1, true, L"a(1).pdf", true},
        {"number a new one", 2, false, L"a.pdf", true},
        {"number", 2, true, L"a(1).pdf", true},
        {"refuse", 3, true, nullptr, false},
        {"unknown code loses nothing", 7, true, L"a(1).pdf", true},
    };
    for (const auto& row : rows) {
        const TempFolder folder;
        if (row.exists)
            folder.write(L"a.pdf", "old");
        const auto file = choose_unattended(folder.path(), L"a", companions::same_name_rule(row.code), {});
        ASSERT_EQ(file.has_value(), row.name != nullptr) << row.label;
        EXPECT_EQ(TempFolder::read(folder.file(L"a.pdf")), row.exists     ? "old"
                                                           : row.reserved ? ""
                                                                          : "<missing>")
            << row.label;
        if (!file)
            continue;
        EXPECT_EQ(file->path, folder.file(row.name)) << row.label;
        EXPECT_EQ(file->reserved, row.reserved) << row.label;
        EXPECT_EQ(qk::is_file(file->path), row.reserved || row.exists) << row.label;
    }
}

TEST(OutputChoice, JobsOfOneTitleAtOnceGetNamesOfTheirOwn) {
    constexpr int kThreads = 8;
    constexpr int kJobs = 25;
    const TempFolder folder;
    qk::Lock lock;
    std::set<std::wstring> paths;
    std::vector<companions::Thread> threads;
    for (int i = 0; i < kThreads; ++i)
        threads.emplace_back([&] {
            for (int job = 0; job < kJobs; ++job) {
                const auto file = choose_unattended(folder.path(), L"Same title", SameName::kNumber, {});
                const std::scoped_lock hold(lock);
                if (file && file->reserved)
                    paths.insert(file->path);
            }
        });
    threads.clear();  // waits for them
    EXPECT_EQ(paths.size(), size_t{kThreads * kJobs});
    EXPECT_EQ(folder.count(), size_t{kThreads * kJobs});
    EXPECT_TRUE(qk::is_file(folder.file(L"Same title(199).pdf"))) << "no number is left out";
}

// Answers as a user would, and notes what the dialog was asked to do.
class ScriptedDialog final : public companions::SaveDialog {
public:
    explicit ScriptedDialog(std::deque<std::wstring> answers) : answers_(std::move(answers)) {}

    std::optional<std::wstring> ask(const std::wstring& folder, const std::wstring& name,
                                    bool confirms) override {
        if (offered.empty())
            offered = folder + L'|' + name;
        confirmed = confirms;
        if (answers_.empty())
            return std::nullopt;
        const std::wstring answer = answers_.front();
        answers_.pop_front();
        return answer;
    }
    void refuse(const std::wstring&, std::wstring_view) override { ++refusals; }

    std::wstring offered;
    bool confirmed = false;
    int refusals = 0;

private:
    std::deque<std::wstring> answers_;
};

TEST(OutputChoice, DialogAnswersFollowTheRule) {
    const std::wstring too_long(250, L'x');
    const struct {
        const char* label;
        SameName rule;
        std::deque<std::wstring> answers;  // file names; "old.pdf" and "old.txt.pdf" exist
        std::wstring name;                 // empty: cancelled
        bool reserved;
        int refusals;
    } rows[] = {
        {"cancelled", SameName::kAsk, {}, L"", false, 0},
        {"extension added", SameName::kAsk, {L"new"}, L"new.pdf", true, 0},
        {"the dialog has asked", SameName::kAsk, {L"old.pdf"}, L"old.pdf", false, 0},
        {"the dialog has asked about another name", SameName::kAsk, {L"old.txt"}, L"", false, 1},
        {"number", SameName::kNumber, {L"old.PDF"}, L"old(1).pdf", true, 0},
        {"refused until free", SameName::kRefuse, {L"old.pdf", L"old.pdf", L"x.pdf"}, L"x.pdf", true, 2},
        {"too long", SameName::kOverwrite, {too_long, L"x.pdf"}, L"x.pdf", false, 1},
        {"not to be made", SameName::kNumber, {L"none\\x.pdf", L"x.pdf"}, L"x.pdf", true, 1},
    };
    for (const auto& row : rows) {
        const TempFolder folder;
        folder.write(L"old.pdf", "old");
        folder.write(L"old.txt.pdf", "old");
        std::deque<std::wstring> answers;
        for (const std::wstring& name : row.answers)
            answers.push_back(folder.file(name));
        ScriptedDialog dialog(answers);
        const auto file = choose_with_dialog(dialog, folder.path(), L"Ti:tle.pdf", row.rule, {});
        EXPECT_EQ(file ? file->path : L"", row.name.empty() ? L"" : folder.file(row.name)) << row.label;
        EXPECT_EQ(file && file->reserved, row.reserved) << row.label;
        EXPECT_EQ(dialog.refusals, row.refusals) << row.label;
        EXPECT_EQ(dialog.offered, folder.path() + L"|Ti_tle.pdf") << row.label;
        EXPECT_EQ(dialog.confirmed, row.rule == SameName::kAsk) << row.label;
        EXPECT_EQ(TempFolder::read(folder.file(L"old.pdf")), "old") << row.label;
    }
}

}  // namespace

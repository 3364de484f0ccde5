#include <gtest/gtest.h>

#include "support/sheet_driver.h"

namespace {

using namespace pdf_settings;

TEST_F(EditSheet, HoldsItsNinePagesFromTheStart) {
    show([] {
        EXPECT_TRUE(sheet());
        for (size_t i = 0; i < kPageCount; ++i)
            EXPECT_TRUE(go_to(static_cast<PageIndex>(i))) << i;
    });
    EXPECT_TRUE(dialog_state().cancelled);
}

}  // namespace

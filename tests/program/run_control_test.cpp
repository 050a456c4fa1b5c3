#include "program/run_control.h"

#include <gtest/gtest.h>

namespace hr::tests
{

TEST(RunControl, AJobInsideAnotherOneKeepsItsStop)
{
    ResetRunControl();
    for (int round = 0; round < 2; ++round) { // the next job begins anew
        const StoppableJob outer;
        EXPECT_FALSE(StoppableJob::stopRequested());
        EXPECT_TRUE(JobCanBeStopped());
        {
            const StoppableJob inner;
            ConfirmStop();
        }
        const StoppableJob another;
        EXPECT_TRUE(StoppableJob::stopRequested());
        EXPECT_FALSE(JobCanBeStopped());
    }
    ResetRunControl();
}

} // namespace hr::tests

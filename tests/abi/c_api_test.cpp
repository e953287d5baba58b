#include <gtest/gtest.h>

extern "C" int c_program_works(void);

TEST(CProgram, BuildsEncodesAndDecodesALabel) {
  EXPECT_EQ(c_program_works(), 0) << "the line of c_api.c that failed";
}

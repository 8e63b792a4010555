// What a full history takes of the heap.
#include "tests/support/HeapInUse.h"
#include "tests/support/PhoneTest.h"

namespace desk {
namespace {

using HeapTest = PhoneTest;

// One record at most, by what it is made of: nine strings, blocks for the two of them that are too
// long here to stand inside the string, four numbers, its place in the list, the allocator's share.
constexpr std::size_t kRecord = 9 * sizeof(std::string) + 2 * 48 + 8 * sizeof(void*) + 16;
constexpr std::size_t kBeside = 4 * 1024;  // controller, model, search

TEST_F(HeapTest, AFullHistoryTakesItsRecordsAndLittleElse) {
  for (int i = 0; i < 400; ++i) {
    CallLogAddItemData call = MakeCall(1 + i % 4, "+49301234" + std::to_string(1000 + i));
    call.remote_display_name = "Fischer & Sons, extension " + std::to_string(i);
    ASSERT_EQ(CallLog_AddLog(call), 0);
  }
  Controller().SaveToFile();
  const std::size_t with = HeapInUse();
  NS_CALLLOG::CCallLogController::ReleaseInstance();
  const std::size_t taken = with - HeapInUse();
  std::printf("  %6zu  heap that a full history takes\n", taken);
  EXPECT_LT(taken, 400 * kRecord + kBeside);
}

}  // namespace
}  // namespace desk

// The file of the server call logs' sources, which provisioning writes. What cannot be loaded is
// left alone; what can is the same after it was saved and loaded again.
#include "tests/fuzz/Fuzz.h"

namespace desk {
namespace {

using NS_CALLLOG::CBSCallLogController;

CBSCallLogController& Sources() { return *CBSCallLogController::GetInstance(); }

// Everything that was loaded, field by field.
Strings Loaded() {
  Strings texts = {CallLog_GetBSCallLogDisplayName()};
  for (int i = 0; i < Sources().GetTotalConfigurableItemCount(); ++i) {
    const BroadSoftConfigItem& item = *Sources().GetConfigDataByIndex(i);
    texts.insert(texts.end(), {item.name, item.server, item.port, item.user_name, item.password});
  }
  return texts;
}

}  // namespace

void FuzzOne(const std::string& input) {
  static FuzzPhone phone;
  const std::filesystem::path file = "config/data/broadsoft_calllog_list.xml";
  phone.platform->journal.Clear();
  WriteFile(file, input);
  CBSCallLogController::ReleaseInstance();
  Sources().ReloadBSCallLogConfig();
  EXPECT_EQ(ReadFile(file), input);
  const Strings before = Loaded();
  if (before.size() == 1) return;
  Sources().SetConfigDataByIndex(0, BroadSoftConfigItem(*Sources().GetConfigDataByIndex(0)));
  const std::string saved = ReadFile(file);
  const auto items = StrictItems(saved, "root_broadsoft_calllog");
  ASSERT_TRUE(items) << saved;
  EXPECT_EQ(items->size(), (before.size() - 1) / 5);
  EXPECT_TRUE(Sources().ReloadBSCallLogConfig());
  EXPECT_EQ(Loaded(), before);
}

}  // namespace desk

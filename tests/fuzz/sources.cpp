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
    EXPECT_EQ(Sources().IsItemConfigured(i), !item.name.empty());
    texts.insert(texts.end(), {item.name, item.server, item.port, item.user_name, item.password});
  }
  return texts;
}

}  // namespace

void FuzzOne(const std::string& input) {
  static FuzzPhone phone;
  const std::filesystem::path file = "config/data/broadsoft_calllog_list.xml";
  const auto save = [&file] {
    Sources().SetConfigDataByIndex(0, BroadSoftConfigItem(*Sources().GetConfigDataByIndex(0)));
    return ReadFile(file);
  };
  phone.platform->journal.Clear();
  WriteFile(file, input);
  CBSCallLogController::ReleaseInstance();
  const bool loaded = Sources().ReloadBSCallLogConfig();
  EXPECT_EQ(ReadFile(file), input);
  const Strings before = Loaded();
  if (!loaded) EXPECT_EQ(before.size(), 1u);
  if (before.size() == 1) return;
  const std::string first = save();
  const auto items = StrictItems(first, "root_broadsoft_calllog");
  ASSERT_TRUE(items) << first;
  EXPECT_EQ(items->size(), (before.size() - 1) / 5);
  EXPECT_TRUE(Sources().ReloadBSCallLogConfig());
  EXPECT_EQ(Loaded(), before);
  EXPECT_EQ(save(), first);
}

}  // namespace desk

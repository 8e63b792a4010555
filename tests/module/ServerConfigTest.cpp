// The file of the server call logs' sources: default, edited by hand, damaged, and what is written.
#include <cstdlib>

#include "tests/support/PlainModel.h"
#include "tests/support/ServerTest.h"

namespace desk {
namespace {

class ServerConfigTest : public ServerTest {
 protected:
  std::filesystem::path file() const {
    return root.path() / "config/data/broadsoft_calllog_list.xml";
  }

  static std::string Xml(const std::string& rootAttributes, const Strings& items) {
    std::string xml = R"(<?xml version="1.0" encoding="UTF-8" ?>)"
                      "\n<root_broadsoft_calllog" +
                      rootAttributes + ">\n";
    for (const std::string& item : items) xml += "    <item " + item + " />\n";
    return xml + "</root_broadsoft_calllog>\n";
  }

  // Every source as its fields with "|" behind each.
  static Strings Sources() {
    Strings sources;
    for (int i = 0; i < Logs().GetTotalConfigurableItemCount(); ++i) {
      const BroadSoftConfigItem& item = *Logs().GetConfigDataByIndex(i);
      sources.push_back(item.name + "|" + item.server + "|" + item.port + "|" + item.user_name +
                        "|" + item.password + "|");
      EXPECT_EQ(Logs().GetConfiguredItemName(i), item.name);
      EXPECT_EQ(Logs().IsItemConfigured(i), !item.name.empty());
    }
    return sources;
  }

  static void ExpectConfigured(bool configured) {
    EXPECT_EQ(CallLog_IsBroadSoftCallLogConfigured(), configured ? 1 : 0);
    EXPECT_EQ(CallLog_IsOtherLocalCallLogConfigured(), configured ? 1 : 0);
    EXPECT_EQ(Logs().IsBroadSoftCallLogConfigured(), configured);
  }
};

constexpr char kEmptyItem[] = R"(name="" server="" port="" user_name="" password="")";

TEST_F(ServerConfigTest, StartsWithSixEmptySources) {
  ExpectConfigured(false);  // creates the controller, and it the file
  EXPECT_EQ(ReadFile(file()), Xml(R"( display_name="")", Strings(6, kEmptyItem)));
  EXPECT_EQ(Sources(), Strings(6, "|||||"));
}

TEST_F(ServerConfigTest, ReadsAHandEditedFile) {
  WriteFile(file(), R"(<?xml version='1.0'?><!-- ours -->
      <other/>
      <root_broadsoft_calllog display_name='Server &amp; &#x4C;ogs' more="1">
        <item password='p&quot;"' name="Missed" server="https://h/p"/>
        <Item name="no"/> text <group><item name="no"/></group>
        <item server="h" port="8080" user_name="anna"></item>
        <!-- <item name="no"/> -->
        <item/><item/><item/><item/><item name="Last">text</item>
      </root_broadsoft_calllog>
      <root_broadsoft_calllog display_name="no"><item name="no"/></root_broadsoft_calllog>)");
  EXPECT_EQ(Sources(), (Strings{"Missed|https://h/p|||p\"\"|", "|h|8080|anna||", "|||||", "|||||",
                                "|||||", "|||||", "Last|||||"}));
  EXPECT_EQ(CallLog_GetBSCallLogDisplayName(), "Server & Logs");
  for (const int value : {0, 2, 1}) {
    platform->config["BDDirectoryShowSwitch"] = value;
    ExpectConfigured(value == 1);
  }
  WriteFile(file(), Xml("", {R"(server="h")"}));  // and no display name
  EXPECT_TRUE(Logs().ReloadBSCallLogConfig());
  EXPECT_EQ(Sources(), Strings{"|h||||"});
  ExpectConfigured(false);
  EXPECT_EQ(CallLog_GetBSCallLogDisplayName(), "");
}

TEST_F(ServerConfigTest, ADamagedFileLeavesNoSourceAndIsNotWritten) {
  const std::string good = Xml(R"( display_name="Logs")", {R"(name="a")"});
  const auto expectRefused = [&] {
    EXPECT_FALSE(Logs().ReloadBSCallLogConfig());
    EXPECT_EQ(Sources(), Strings{});
    EXPECT_EQ(CallLog_GetBSCallLogDisplayName(), "Logs");
    ExpectConfigured(false);
    SetSource(0, "/Missed");
    EXPECT_EQ(Ask(0), NS_CALLLOG::BS_LIST_NOT_CONFIGURED);
  };
  for (const std::string& damaged :
       {std::string(), std::string(5000, '\0'), good.substr(0, good.find("</")),
        std::string("<root_call_log><root_broadsoft_calllog/></root_call_log>"),
        std::string("<root_broadsoft_calllog display_name=a\"/>")}) {
    SCOPED_TRACE(damaged.substr(0, 99));
    WriteFile(file(), good);
    EXPECT_TRUE(Logs().ReloadBSCallLogConfig());
    SetSource(0, "/Missed");  // is saved now
    WriteFile(file(), damaged);
    expectRefused();
    EXPECT_EQ(ReadFile(file()), damaged);
  }
  std::filesystem::remove_all(file().parent_path());  // nowhere to create it
  expectRefused();
  std::filesystem::create_directories(file().parent_path());
  std::filesystem::create_directory(file());
  expectRefused();
  std::filesystem::remove(file());
  EXPECT_TRUE(Logs().ReloadBSCallLogConfig());
  EXPECT_EQ(Sources(), Strings(6, "|||||"));
  EXPECT_EQ(CallLog_GetBSCallLogDisplayName(), "");
}

TEST_F(ServerConfigTest, KeepsHostileStrings) {
  for (const std::string& entered :
       List("&#x41;&amp;&&#65;&quot;&#x;", "\"'<>]]>--><!-- />", std::string(100000, '&'),
            " \t a\r\nb%s%n Zo\u00EB \U0001F600 ", "\x01\x1F\x7F", "\xE2\"a\xC3",
            std::string("a\0b", 3))) {
    BroadSoftConfigItem item = MakeSource(entered, entered, entered, entered);
    item.name = entered;
    Logs().SetConfigDataByIndex(5, item);
    EXPECT_EQ(Logs().GetConfigDataByIndex(5)->password, entered);
    const std::string command = "xmllint --noout '" + file().string() + "'";
    EXPECT_EQ(std::system(command.c_str()), 0) << ReadFile(file()).substr(0, 1000);
    EXPECT_TRUE(Logs().ReloadBSCallLogConfig());
    const std::string kept = KeptText(entered);
    EXPECT_EQ(Sources()[5], kept + "|" + kept + "|" + kept + "|" + kept + "|" + kept + "|");
  }
  WriteFile(file(), Xml(R"( display_name="&quot;&amp;&#x0A;&#x26;lt;")", {kEmptyItem}));
  for (const bool written : {false, true}) {
    if (written) SetSource(0, "/Missed");
    EXPECT_TRUE(Logs().ReloadBSCallLogConfig());
    EXPECT_EQ(CallLog_GetBSCallLogDisplayName(), "\"&\n&lt;");
  }
}

}  // namespace
}  // namespace desk

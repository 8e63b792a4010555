// How a transfer's URL is split: unescaped credentials apart from what is sent.
#include <gtest/gtest.h>

#include "desktop/platform/TransferUrl.h"

namespace {

TEST(TransferUrlTest, TakesTheCredentialsApart) {
  const struct {
    const char* url;
    const char* address;
    const char* user;
    const char* password;
  } kRows[] = {
      {"http://h/p", "http://h/p", "", ""},
      {"http://u:w@h:8080/p", "http://h:8080/p", "u", "w"},
      {"http://anna@example.org:p@ss:1@host:8080/v2.0/user/anna@example.org/CallLogs/Missed",
       "http://host:8080/v2.0/user/anna@example.org/CallLogs/Missed", "anna@example.org", "p@ss:1"},
      {"http://host/user/anna@example.org:80", "http://host/user/anna@example.org:80", "", ""},
      {"https://u:@h/p", "https://h/p", "u", ""},
      {"https://u@h/p", "https://h/p", "u", ""},
      {"http://:w@h/", "http://h/", "", "w"},
      {"http://@h/", "http://h/", "", ""},
      {"http://u:%41 #?@h/", "http://h/", "u", "%41 #?"},
      {"http://u:w@[::1]:80/p", "http://[::1]:80/p", "u", "w"},
      {"http://u:w@h", "http://h/", "u", "w"},
      {"http://h?name=a", "http://h/?name=a", "", ""},
      {"http://h/p?name=Anna M\xC3\xBC%20&x=a@b", "http://h/p?name=Anna+M%c3%bc%20&x=a@b", "", ""},
      {"http://u:w@h:9?name=a@other:80/p", "http://h:9/?name=a@other:80/p", "u", "w"},
      {"http://u:w?name@h/p?name=/@other", "http://h/p?name=/@other", "u", "w?name"},
      {"http://h/a b", "http://h/a%20b", "", ""},
  };
  for (const auto& row : kRows) {
    SCOPED_TRACE(row.url);
    const auto split = desk::SplitUrl(row.url);
    ASSERT_TRUE(split);
    EXPECT_EQ(split->address, row.address);
    EXPECT_EQ(split->user, row.user);
    EXPECT_EQ(split->password, row.password);
  }
  EXPECT_TRUE(desk::SplitUrl("HTTPS://h/"));
}

TEST(TransferUrlTest, RefusesWhatCannotBeFetched) {
  for (const char* url :
       {"", "h/p", "http:/h/p", "://h/p", "file:///etc/passwd", "ftp://h/p", "xhttp://h/p",
        "http://", "http:///p", "http://u:w@/p", "http://u:w@:80/p", "http://h:x/p",
        "http://h:65536/p", "http://a b/p", "http://h/a\nb", "http://h\r\nX: y/p"}) {
    EXPECT_FALSE(desk::SplitUrl(url)) << url;
  }
}

}  // namespace

// How a transfer's URL is split: unescaped credentials apart from what is sent.
#include <gtest/gtest.h>

#include "desktop/platform/transfer/TransferUrl.h"

namespace {

constexpr struct {
  const char* url;
  const char* parts;  // user, password and address
} kUrls[] = {
    {"http://h/p", "||http://h/p"},
    {"http://anna@example.org:p@ss:1@host:8080/v2.0/user/anna@example.org/CallLogs/Missed",
     "anna@example.org|p@ss:1|http://host:8080/v2.0/user/anna@example.org/CallLogs/Missed"},
    {"http://host/user/anna@example.org:80", "||http://host/user/anna@example.org:80"},
    {"https://u:@h/p", "u||https://h/p"},
    {"https://u@h/p", "u||https://h/p"},
    {"http://:w@h/", "|w|http://h/"},
    {"http://@h/", "||http://h/"},
    {"http://u:%41 #?@h/", "u|%41 #?|http://h/"},
    {"http://u:w@[::1]:80/p", "u|w|http://[::1]:80/p"},
    {"http://u:w@h", "u|w|http://h/"},
    {"http://h/p?name=Anna M\xC3\xBC%20&x=a@b", "||http://h/p?name=Anna+M%c3%bc%20&x=a@b"},
    {"http://u:w@h:9?name=a@other:80/p", "u|w|http://h:9/?name=a@other:80/p"},
    {"http://u:w?name@h/p?name=/@other", "u|w?name|http://h/p?name=/@other"},
    {"HTTPS://h/a b", "||https://h/a%20b"},
};

TEST(TransferUrlTest, TakesTheCredentialsApart) {
  for (const auto& row : kUrls) {
    const auto split = desk::SplitUrl(row.url);
    ASSERT_TRUE(split) << row.url;
    EXPECT_EQ(split->user + "|" + split->password + "|" + split->address, row.parts);
  }
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

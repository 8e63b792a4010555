// Address books in vCard form, and the contact directory that holds what they say.
#include <gtest/gtest.h>

#include <regex>
#include <sstream>
#include <string>
#include <vector>

#include "desktop/platform/contacts/Contacts.h"
#include "desktop/platform/contacts/VCard.h"

namespace {

using desk::Contact;
using desk::Contacts;
using desk::ParseVCards;

std::string Card(const std::string& properties) {
  return "BEGIN:VCARD\nVERSION:3.0\n" + properties + "END:VCARD\n";
}

// "name|number|number|photo" of each contact, one a line.
std::string Shown(const std::vector<Contact>& contacts) {
  std::string shown;
  for (const Contact& contact : contacts) {
    shown += contact.name + "|";
    for (const std::string& number : contact.numbers) shown += number + "|";
    shown += contact.photo + "\n";
  }
  return shown;
}

const struct {
  const char* what;
  std::string text;
  const char* shown;
} kBooks[] = {
    {"several numbers, parameters, groups, small letters",
     Card("N:Müller;Stéphane;;;\nFN:Stéphane Müller\nTEL;TYPE=WORK,VOICE;TYPE=pref:612\n"
          "item1.TEL;TYPE=\"cell;x:y\":613\nitem1.X-ABLABEL:Car\nTEL: - \ntel:(61) 4\n"),
     "Stéphane Müller|612|613|614|\n"},
    {"escapes", Card("FN:Doe\\, Jane\\; x\\\\n y\\nz\\N\\:\\q\nTEL:1\n"),
     "Doe, Jane; x\\n y\nz\n:\\q|1|\n"},
    {"folded lines, one in the middle of a letter",
     Card("FN:Zo\xC3\n \xAB \n  Orl\n\tova\nTEL;TYPE=\n WORK:61\n 5\n"), "Zoë  Orlova|615|\n"},
    {"4.0 URIs",
     Card("FN:A\nTEL;VALUE=uri;TYPE=\"voice,home\":tel:+49-30-1234;ext=5\n"
          "TEL;VALUE=uri:TEL:+4930\nTEL;VALUE=uri:sip:a.b@example.org\n"),
     "A|+49301234|+4930|sip:a.b@example.org|\n"},
    {"photos by reference; the first one counts, and the first name",
     Card("FN:B\nFN:C\nTEL:2\nPHOTO:photos/b.png\nPHOTO:photos/c.png\n"), "B|2|photos/b.png\n"},
    {"photos inside",
     Card("FN:A\nTEL:1\nPHOTO;ENCODING=b;TYPE=PNG:iVBORw0K\n Ggo=\n") +
         Card("FN:B\nTEL:2\nPHOTO;JPEG;BASE64:\n  iVBORw0KGgo=\n\nTITLE:x\n") +
         Card("FN:C\nTEL:3\nPHOTO:data:image/png;base64\\,iVBORw0KGgo=\n"),
     "A|1|\nB|2|\nC|3|\n"},
    {"quoted-printable",
     Card("FN;CHARSET=UTF-8;ENCODING=QUOTED-PRINTABLE:St=C3=A9=\nphane =\n"
          " M=c3=bcller 1=2=21=\n\nTEL;HOME:1\n"),
     "Stéphane  Müller 1=2!|1|\n"},
    {"a character set of its own, and one that it has only said",
     Card("FN;CHARSET=ISO-8859-1;ENCODING=QUOTED-PRINTABLE:St=E9=\nphane\nTEL:1\n") +
         Card("FN;CHARSET=no-such:Zo\u00EB\nTEL:2\n"),
     "Stéphane|1|\nZoë|2|\n"},
    {"only the parts of a name, or a company",
     Card("ORG:Byrne\\; Sons;Sales\nTEL:1\n") + Card("N:Lee;;;\nFN:\nTEL:2\n") +
         Card("ORG:X\nN;CHARSET=ISO-8859-1;QUOTED-PRINTABLE:M=FC=3Bller;Anna\nTEL:3\n"),
     "Byrne; Sons|1|\nLee|2|\nAnna Mü;ller|3|\n"},
    {"an empty file", "", ""},
    {"mark of byte order, blank lines, no last line end",
     "\xEF\xBB\xBF\nbegin:vcard\nFN:A\n\nTEL:1\nend:vcard\n \nBEGIN:VCARD\nFN:B\nTEL:2\nEND:VCARD",
     "A|1|\nB|2|\n"},
};

TEST(VCardTest, ReadsCards) {
  for (const auto& row : kBooks) {
    SCOPED_TRACE(row.what);
    std::ostringstream skipped;
    EXPECT_EQ(Shown(ParseVCards(row.text, "book.vcf", skipped)), row.shown);
    const std::string crLf = std::regex_replace(row.text, std::regex("\n"), "\r\n");
    EXPECT_EQ(Shown(ParseVCards(crLf, "book.vcf", skipped)), row.shown);
    EXPECT_EQ(skipped.str(), "");
  }
}

const struct {
  std::string text;
  const char* error;
} kWrong[] = {
    {"\n \nname,number\nAnna,612\n", "book.vcf:3: not a vCard"},
    {" BEGIN:VCARD\n", "book.vcf:1: not a vCard"},
    {Card("FN:A\nTEL:1\n") + "FN:B\n", "book.vcf:6: not a vCard"},
    {Card("FN:A\nTEL:1\n") + "BEGIN:VCARD\nFN:B\nTEL:1\n", "book.vcf:6: the card has no END:VCARD"},
    {"BEGIN:VCARD\nFN:B\n" + Card(""), "book.vcf:1: the card has no END:VCARD"},
    {Card("FN:A\n folded\nTEL 612\n"), "book.vcf:5: neither a property"},
    {Card(":612\n"), "book.vcf:3: neither a property"},
    {Card("TEL;TYPE=\"HOME:612\n"), "book.vcf:3: neither a property"},
    {Card("FN;ENCODING=QUOTED-PRINTABLE:St=E9phane\n"), "book.vcf:3: the name is not in UTF-8"},
    {Card("N:;;\nTEL:1\n"), "book.vcf:1: the card has no name"},
    {Card("FN:B\n"), "book.vcf:1: the card has no number"},
};

TEST(VCardTest, SkipsWhatIsWrongAndNamesItsLine) {
  for (const auto& row : kWrong) {
    std::ostringstream skipped;
    const auto contacts = ParseVCards(row.text + Card("FN:Z\nTEL:9\n"), "book.vcf", skipped);
    EXPECT_EQ(skipped.str().rfind(row.error, 0), 0u) << skipped.str();
    ASSERT_FALSE(contacts.empty()) << row.error;
    EXPECT_EQ(contacts.back().name, "Z");
  }
}

TEST(ContactsTest, DialledFormDropsSeparatorsOfNumbersOnly) {
  EXPECT_EQ(desk::DialledForm("+33 (0)30/12-34.5\t6"), "+3330123456");
  EXPECT_EQ(desk::DialledForm("00 44 (0)"), "0044");
  EXPECT_EQ(desk::DialledForm("(0)20 (0)1"), "02001");
  EXPECT_EQ(desk::DialledForm(" -./() "), "");
  EXPECT_EQ(desk::DialledForm("*21#\xA0"), "*21#\xA0");
  EXPECT_EQ(desk::DialledForm("anna.o-hara"), "anna.o-hara");
  EXPECT_EQ(desk::DialledForm("1.2@192.0.2.7"), "1.2@192.0.2.7");
  EXPECT_EQ(desk::DialledForm("(202)\u00A0555\u20110101"), "2025550101");
}

TEST(ContactsTest, FindsTheFirstContactWithExactlyTheNumber) {
  Contacts contacts({{"A", {"1", "12"}, {}}, {"B", {"12", "3", ""}, {}}});
  contacts.Add({"C", {"3", "4"}, {}});
  EXPECT_EQ(contacts.FindByNumber("12"), &contacts.All()[0]);
  EXPECT_EQ(contacts.FindByNumber("3"), &contacts.All()[1]);
  EXPECT_EQ(contacts.FindByNumber("4"), &contacts.All()[2]);
  for (const char* unknown : {"", "2", "123", "+1"}) {
    EXPECT_EQ(contacts.FindByNumber(unknown), nullptr) << unknown;
  }
  EXPECT_TRUE(contacts.Rename("1", ""));
  EXPECT_EQ(contacts.FindByNumber("1"), nullptr);
  EXPECT_EQ(contacts.FindByNumber("12")->name, "B");
}

}  // namespace

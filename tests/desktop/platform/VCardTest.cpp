// Address books in vCard form, and the contact directory that holds what they say.
#include <gtest/gtest.h>

#include <regex>
#include <string>
#include <utility>
#include <vector>

#include "desktop/platform/Contacts.h"
#include "desktop/platform/VCard.h"

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

TEST(VCardTest, ReadsCards) {
  const struct {
    const char* what;
    std::string text;
    const char* shown;
  } kRows[] = {
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
       Card("FN:A\nTEL:1\nPHOTO;VALUE=uri:https://example.org/a.png\n") +
           Card("FN:B\nFN:C\nTEL:2\nPHOTO:photos/b.png\nPHOTO:photos/c.png\n"),
       "A|1|https://example.org/a.png\nB|2|photos/b.png\n"},
      {"photos inside",
       Card("FN:A\nTEL:1\nPHOTO;ENCODING=b;TYPE=PNG:iVBORw0K\n Ggo=\n") +
           Card("FN:B\nTEL:2\nPHOTO;JPEG;BASE64:\n  iVBORw0KGgo=\n\nTITLE:x\n") +
           Card("FN:C\nTEL:3\nPHOTO:data:image/png;base64\\,iVBORw0KGgo=\n"),
       "A|1|\nB|2|\nC|3|\n"},
      {"quoted-printable",
       Card("FN;CHARSET=UTF-8;ENCODING=QUOTED-PRINTABLE:St=C3=A9=\nphane =\n"
            " M=c3=bcller 1=2=21=\n\nTEL;HOME:1\n"),
       "Stéphane  Müller 1=2!|1|\n"},
      {"cards without name or number are skipped",
       Card("TEL:1\n") + Card("FN:\nTEL:1\n") + Card("FN:B\n") + Card("FN:C\nTEL:2\n"), "C|2|\n"},
      {"mark of byte order, blank lines, no last line end",
       "\xEF\xBB\xBF\nbegin:vcard\nFN:A\n\nTEL:1\nend:vcard\n \n"
       "BEGIN:VCARD\nFN:B\nTEL:2\nEND:VCARD",
       "A|1|\nB|2|\n"},
  };
  for (const auto& row : kRows) {
    SCOPED_TRACE(row.what);
    EXPECT_EQ(Shown(ParseVCards(row.text, "book.vcf")), row.shown);
    const std::string crLf = std::regex_replace(row.text, std::regex("\n"), "\r\n");
    EXPECT_EQ(Shown(ParseVCards(crLf, "book.vcf")), row.shown);
  }
}

TEST(VCardTest, NamesTheLineOfWhatIsWrong) {
  const std::string card = Card("FN:A\nTEL:1\n");
  const struct {
    std::string text;
    const char* error;
  } kRows[] = {
      {"", "book.vcf:1: not a vCard"},
      {"\n \n", "book.vcf:1: not a vCard"},
      {"name,number\nAnna,612\n", "book.vcf:1: not a vCard"},
      {"BEGIN:VCALENDAR\nEND:VCALENDAR\n", "book.vcf:1: not a vCard"},
      {"BEGIN", "book.vcf:1: not a vCard"},
      {" BEGIN:VCARD\n", "book.vcf:1: not a vCard"},
      {"END:VCARD\n", "book.vcf:1: not a vCard"},
      {card + "FN:B\n", "book.vcf:6: not a vCard"},
      {card + "BEGIN:VCARD\nFN:B\nTEL:1\n", "book.vcf:6: the card has no END:VCARD"},
      {"BEGIN:VCARD\nFN:B\n" + card, "book.vcf:1: the card has no END:VCARD"},
      {Card("FN:A\n folded\nTEL 612\n"), "book.vcf:5: neither a property"},
      {Card(":612\n"), "book.vcf:3: neither a property"},
      {Card("TEL;TYPE=\"HOME:612\n"), "book.vcf:3: neither a property"},
      {Card("FN:St\xE9phane\n"), "book.vcf:3: FN is not in UTF-8"},
      {Card("FN;ENCODING=QUOTED-PRINTABLE:St=E9phane\n"), "book.vcf:3: FN is not in UTF-8"},
  };
  for (const auto& row : kRows) {
    SCOPED_TRACE(row.text);
    try {
      ParseVCards(row.text, "book.vcf");
      ADD_FAILURE() << "accepted";
    } catch (const desk::VCardError& error) {
      EXPECT_EQ(std::string(error.what()).rfind(row.error, 0), 0u) << error.what();
    }
  }
}

TEST(VCardTest, LosesNoContactOfACutOffFile) {
  const std::string first =
      Card("FN;ENCODING=QUOTED-PRINTABLE:=C3=\n=A9\\\nitem1.TEL;TYPE=\"a\":tel:1;x\n");
  const std::string text = first + Card("FN:B\nTEL:2\nPHOTO;ENCODING=b:QUJD\n");
  for (std::size_t size = 0; size < text.size() - 1; ++size) {
    const std::string cut = text.substr(0, size);
    if (size == first.size() || size == first.size() - 1) {
      EXPECT_NO_THROW(ParseVCards(cut, "book.vcf")) << cut;
    } else {
      EXPECT_THROW(ParseVCards(cut, "book.vcf"), desk::VCardError) << cut;
    }
  }
}

TEST(ContactsTest, DialledFormDropsSeparatorsOfNumbersOnly) {
  const std::pair<const char*, const char*> kRows[] = {
      {"+33 (0)30/12-34.5\t6", "+33030123456"},
      {" -./() ", ""},
      {"*21#", "*21#"},
      {"anna.o-hara", "anna.o-hara"},
      {"1.2@192.0.2.7", "1.2@192.0.2.7"},
      {"(202)\u00A0555\u20110101", "2025550101"},
  };
  for (const auto& [written, dialled] : kRows) EXPECT_EQ(desk::DialledForm(written), dialled);
}

TEST(ContactsTest, FindsTheFirstContactWithExactlyTheNumber) {
  Contacts contacts({{"A", {"1", "12"}, {}}, {"B", {"12", "3", ""}, {}}});
  contacts.Add({"C", {"3", "4"}, {}});
  EXPECT_EQ(contacts.FindByNumber("12"), &contacts.All()[0]);
  EXPECT_EQ(contacts.FindByNumber("3"), &contacts.All()[1]);
  EXPECT_EQ(contacts.FindByNumber("4"), &contacts.All()[2]);
  for (const char* unknown : {"", "2", "123", "+1", "1 "}) {
    EXPECT_EQ(contacts.FindByNumber(unknown), nullptr) << unknown;
  }
  contacts.Replace({{"D", {"4"}, {}}});
  EXPECT_EQ(contacts.FindByNumber("1"), nullptr);
  EXPECT_EQ(contacts.FindByNumber("4")->name, "D");
}

}  // namespace

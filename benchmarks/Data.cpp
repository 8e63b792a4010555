#include "benchmarks/Data.h"

namespace bench {
namespace {

constexpr int kParties = 60;
constexpr int kMissedCallers = 25;
constexpr int kFirstTime = 1791363600;  // 2026-10-07 09:00:00 UTC
constexpr int kSecondsBetween = 1740;

constexpr const char* kFirstNames[] = {"Anna",  "José",  "Chloë",    "Tom",  "Katharina", "Li",
                                       "Søren", "Priya", "Bernhard", "Ines", "Fatou",     "Agnès"};
constexpr const char* kLastNames[] = {"Ortega Núñez", "Byrne & Sons", "Kim", "Müller",
                                      "van den Berg"};

std::string Digits(int number, int width) {
  std::string text = std::to_string(number);
  while (static_cast<int>(text.size()) < width) text.insert(0, 1, '0');
  return text;
}

// A third of them are extensions of the house.
SuperSearchItemData OfficeParty(int index) {
  SuperSearchItemData party;
  party.display_name = std::string(kFirstNames[index % 12]) + " " + kLastNames[index / 12];
  party.number = index % 3 == 0 ? std::to_string(210 + index) : "+1202555" + Digits(index * 83, 4);
  if (index == 17) party.display_name = "Zimmermann \"Zed\"";
  return party;
}

// The call number `index` of a history, from the oldest.
CallLogAddItemData MakeCall(int index, const SuperSearchItemData& party) {
  CallLogAddItemData call;
  call.type = index % kTypes + 1;
  call.born_tick = kFirstTime + index * kSecondsBetween;
  call.duration = call.type == 2 ? 0 : index * 37 % 1800;
  call.local_sip_name = "anna.example";
  call.local_sip_server = "sip.example.org";
  call.remote_sip_name = party.number;
  call.remote_sip_server = "pbx.example.org";
  call.remote_display_name = party.display_name;
  if (call.type == 4) call.forward_sip_name = "+12025550199";
  return call;
}

}  // namespace

std::vector<CallLogAddItemData> OfficeCalls(int count) {
  std::vector<CallLogAddItemData> calls;
  for (int i = 0; i < count; ++i) {
    const int round = i / kTypes;
    const int party = i % kTypes == 1 ? round % kMissedCallers : (i * 7 + round) % kParties;
    calls.push_back(MakeCall(i, OfficeParty(party)));
  }
  return calls;
}

std::vector<CallLogAddItemData> CampaignCalls(int hits) {
  std::vector<CallLogAddItemData> calls;
  for (int i = 0; i < kCalls; ++i) {
    const int mixed = i * 149 % kCalls;  // in no order of names or numbers
    SuperSearchItemData party;
    party.number = (i < hits ? "0306" : "711") + Digits(mixed % 10, 1) + Digits(mixed, 3);
    party.display_name = std::string(i < hits ? "Mari" : "Josi") +
                         static_cast<char>('a' + mixed % 10) + " " + kLastNames[mixed % 5] + " " +
                         std::to_string(mixed);
    calls.push_back(MakeCall(i, party));
  }
  return calls;
}

std::list<SuperSearchItemData> OfficeParties() {
  std::list<SuperSearchItemData> parties;
  for (int i = 0; i < kParties; ++i) parties.push_back(OfficeParty(i));
  return parties;
}

std::string ServerDocument(int entries) {
  std::string text =
      "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
      "<Missed xmlns=\"http://schema.example.org/calllogs\">\n";
  for (int i = 0; i < entries; ++i) {
    const SuperSearchItemData party = OfficeParty(i % kParties);
    std::string name = party.display_name;
    if (const auto at = name.find('&'); at != std::string::npos) name.insert(at + 1, "amp;");
    text += "  <callLogsEntry>\n    <countryCode>1</countryCode>\n    <phoneNumber>" +
            party.number + "</phoneNumber>\n    <name>" + name + "</name>\n    <time>2026-10-07T" +
            Digits(i % 24, 2) + ":" + Digits(i % 60, 2) + ":12.618Z</time>\n    <callLogId>" +
            std::to_string(10000 + i) + ":0</callLogId>\n  </callLogsEntry>\n";
  }
  return text + "</Missed>\n";
}

}  // namespace bench

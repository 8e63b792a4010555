// Each table of the profile is a map from its keys to what becomes of their values: a new key or
// table is one more entry. Every TOML node knows its file and line, so any reader can complain.
#include "desktop/platform/Profile.h"

#include <toml++/toml.h>

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <fstream>
#include <functional>
#include <iostream>
#include <iterator>
#include <limits>
#include <sstream>
#include <stdexcept>
#include <string_view>
#include <system_error>
#include <utility>

#include "desktop/platform/Text.h"
#include "desktop/platform/TimeText.h"
#include "desktop/platform/contacts/VCard.h"

namespace desk {

namespace {

using Reader = std::function<void(const toml::key&, const toml::node&)>;
using Keys = std::map<std::string_view, Reader>;

[[noreturn]] void Fail(const toml::source_region& where, const std::string& reason) {
  throw std::runtime_error(*where.path + ":" + std::to_string(where.begin.line) + ": " + reason);
}

std::string Quoted(std::string_view text) { return "\"" + std::string(text) + "\""; }

template <typename T>
const T& Expect(const toml::node& value, std::string_view name, const char* kind) {
  if (const T* expected = value.as<T>()) return *expected;
  std::ostringstream actual;
  actual << value.type();
  Fail(value.source(), Quoted(name) + " must be " + kind + ", found: " + actual.str());
}

const std::string& ReadText(const toml::node& value, std::string_view name) {
  return Expect<toml::value<std::string>>(value, name, "a string").get();
}

int ReadInt(const toml::node& value, std::string_view name) {
  using Limits = std::numeric_limits<int>;
  const std::int64_t number = Expect<toml::value<std::int64_t>>(value, name, "an integer").get();
  if (number < Limits::min() || number > Limits::max()) {
    Fail(value.source(), Quoted(name) + " must fit into 32 bits");
  }
  return static_cast<int>(number);
}

void ReadKeys(const toml::table& table, const Keys& known) {
  for (const auto& [key, value] : table) {
    const auto reader = known.find(key.str());
    if (reader == known.end()) {
      const bool isTable = value.is_table() || value.is_array_of_tables();
      Fail(key.source(), (isTable ? "unknown table " : "unknown key ") + Quoted(key.str()));
    }
    reader->second(key, value);
  }
}

Reader Into(std::string& text) {
  return [&](const toml::key& key, const toml::node& value) { text = ReadText(value, key); };
}

Reader TimeZoneInto(std::string& zone) {
  return [&](const toml::key& key, const toml::node& value) {
    zone = ReadText(value, key);
    if (!zone.empty() && !IsTimeZone(zone)) Fail(value.source(), Quoted(zone) + " is no time zone");
  };
}

Reader Into(int& number) {
  return [&](const toml::key& key, const toml::node& value) { number = ReadInt(value, key); };
}

Reader Into(bool& flag) {
  return [&](const toml::key& key, const toml::node& value) {
    flag = Expect<toml::value<bool>>(value, key, "true or false").get();
  };
}

Reader Into(std::map<std::string, int>& numbers) {
  return [&](const toml::key& key, const toml::node& value) {
    for (const auto& [name, number] : Expect<toml::table>(value, key, "a table")) {
      numbers[std::string(name.str())] = ReadInt(number, name);
    }
  };
}

Reader Between(int low, int high, int& number) {
  return [=, &number](const toml::key& key, const toml::node& value) {
    number = ReadInt(value, key);
    if (number >= low && number <= high) return;
    Fail(value.source(), Quoted(key.str()) + " must be from " + std::to_string(low) + " to " +
                             std::to_string(high));
  };
}

Reader Table(Keys keys) {
  return [keys = std::move(keys)](const toml::key& key, const toml::node& value) {
    ReadKeys(Expect<toml::table>(value, key, "a table"), keys);
  };
}

Reader EachTable(std::function<void(const toml::table&)> read) {
  return [read = std::move(read)](const toml::key& key, const toml::node& value) {
    for (const toml::node& entry : Expect<toml::array>(value, key, "an array of tables")) {
      read(Expect<toml::table>(entry, key, "an array of tables"));
    }
  };
}

Reader NumbersInto(std::vector<std::string>& numbers) {
  return [&](const toml::key& key, const toml::node& value) {
    for (const toml::node& entry : Expect<toml::array>(value, key, "an array of strings")) {
      const std::string& written = ReadText(entry, key);
      numbers.push_back(DialledForm(written));
      if (numbers.back().empty()) Fail(entry.source(), Quoted(written) + " is no number");
    }
  };
}

Reader AccountsInto(std::vector<Account>& accounts) {
  return EachTable([&](const toml::table& table) {
    Account account;
    ReadKeys(table, {{"id", Into(account.id)},
                     {"name", Into(account.name)},
                     {"server", Into(account.server)},
                     {"usable", Into(account.usable)},
                     {"keep_missed", Into(account.keeps_missed)}});
    const auto check = [&](bool good, const std::string& reason) {
      if (!good) Fail(table.source(), reason);
    };
    check(!account.name.empty(), "an account without a name");
    check(!account.server.empty(), "an account without a server");
    check(account.id >= 0, "an account id below 0");
    for (const Account& other : accounts) {
      check(other.id != account.id, "a second account with id " + std::to_string(account.id));
      check(other.FullName() != account.FullName(), "a second account " + account.FullName());
    }
    accounts.push_back(std::move(account));
  });
}

Reader ContactsInto(std::vector<Contact>& contacts) {
  return EachTable([&](const toml::table& table) {
    Contact contact;
    ReadKeys(table, {{"name", Into(contact.name)},
                     {"numbers", NumbersInto(contact.numbers)},
                     {"photo", Into(contact.photo)}});
    if (contact.name.empty()) Fail(table.source(), "a contact without a name");
    if (contact.numbers.empty()) Fail(table.source(), "a contact without a number");
    contacts.push_back(std::move(contact));
  });
}

std::string ReadFile(const std::filesystem::path& file) {
  // A folder can be opened like a file, but not read.
  std::error_code error;
  const bool isFolder = std::filesystem::is_directory(file, error);
  if (isFolder) error = make_error_code(std::errc::is_a_directory);
  std::ifstream input(file, std::ios::binary);
  if (!error && !input) error.assign(errno, std::generic_category());
  if (error) throw std::runtime_error(file.string() + ": " + error.message());
  return {std::istreambuf_iterator<char>(input), {}};
}

std::string ReadNamed(const std::filesystem::path& file, const toml::node& value) try {
  return ReadFile(file);
} catch (const std::runtime_error& error) {
  Fail(value.source(), std::string("cannot read ") + error.what());
}

Reader VCardsInto(std::vector<Contact>& contacts, const std::filesystem::path& folder) {
  return [&contacts, folder](const toml::key& key, const toml::node& value) {
    const std::filesystem::path file = folder / ReadText(value, key);
    const std::string text = ReadNamed(file, value);
    contacts = ParseVCards(text, Printable(file.string()), std::cerr);
  };
}

Reader CertificatesInto(std::string& path, const std::filesystem::path& folder) {
  return [&path, folder](const toml::key& key, const toml::node& value) {
    const std::filesystem::path file = folder / ReadText(value, key);
    if (ReadNamed(file, value).find("CERTIFICATE-----") == std::string::npos) {
      Fail(value.source(), "no certificate (PEM) in " + file.string());
    }
    path = std::filesystem::absolute(file).string();  // the phone moves to its root
  };
}

Reader LimitsInto(TransferLimits& limits, const std::filesystem::path& folder) {
  constexpr int kHour = 3600;
  return Table({{"max_bytes", Between(1, std::numeric_limits<int>::max(), limits.max_bytes)},
                {"connect_seconds", Between(1, kHour, limits.connect_seconds)},
                {"idle_seconds", Between(1, kHour, limits.idle_seconds)},
                {"total_seconds", Between(1, kHour, limits.total_seconds)},
                {"max_redirects", Between(0, 50, limits.max_redirects)},
                {"ca_file", CertificatesInto(limits.ca_file, folder)}});
}

Profile ReadProfile(const toml::table& table, const std::filesystem::path& folder) {
  Profile profile;
  std::vector<Contact> addressBook;
  ReadKeys(table, {{"timezone", TimeZoneInto(profile.timezone)},
                   {"config", Into(profile.config)},
                   {"network", Table({{"up", Into(profile.network_up)}})},
                   {"menu", Table({{"present", Into(profile.has_menu)}})},
                   {"account", AccountsInto(profile.accounts)},
                   {"contacts", Table({{"vcard", VCardsInto(addressBook, folder)}})},
                   {"contact", ContactsInto(profile.contacts)},
                   {"transfer", LimitsInto(profile.limits, folder)}});
  std::move(addressBook.begin(), addressBook.end(), std::back_inserter(profile.contacts));
  return profile;
}

}  // namespace

Profile LoadProfile(const std::filesystem::path& file) try {
  return ReadProfile(toml::parse(ReadFile(file), file.string()), file.parent_path());
} catch (const toml::parse_error& error) {
  const std::string line = std::to_string(error.source().begin.line);
  throw std::runtime_error(
      Printable(file.string() + ":" + line + ": " + std::string(error.description())));
} catch (const std::runtime_error& error) {
  throw std::runtime_error(Printable(error.what()));
}

}  // namespace desk

// The phone's SIP accounts. Message thread only. Names can come from a damaged file: any bytes, any
// length, must not throw but for want of memory.
#pragma once

#include <string>

// One account. Owned by the account manager; valid until the next change of the accounts.
class CAccount {
 public:
  bool IsSaveMissCallLog() const;  // true: missed calls of this account go into the history
  bool IsAccountUsable() const;    // true: calls can be placed through it now
  int GetAccountId() const;        // id for talkLogic_CallOut, 0 or more

 protected:
  CAccount() = default;
  ~CAccount() = default;
};

class CAccountManager {
 public:
  // The one manager; never null.
  static CAccountManager* GetInstance();

  // The account whose full name, SIP user name + "@" + SIP server, is `fullName`; null when none
  // is.
  CAccount* GetAccountByFullName(const std::string& fullName);

  // The first account whose SIP user name is `sipName`, on whichever server; null when none is.
  CAccount* GetAccountBySIPName(const std::string& sipName);

 protected:
  CAccountManager() = default;
  ~CAccountManager() = default;
};

// The records that the module and the UI application exchange.
//
// Strings are bytes, UTF-8 where they come from a file. A record belongs to whoever made it: the
// module only reads the ones passed by reference. Of the ones passed by pointer it fills the fields
// that are its own, and appends to the lists; it takes nothing out, and changes no row but the
// count of one in a notification list. Reset() empties every string and zeroes every number; a new
// record is reset.
#pragma once

#include <list>
#include <string>

// A finished call, filled by the caller.
class CallLogAddItemData {
 public:
  int type;                         // 1 outgoing, 2 missed, 3 received, 4 forwarded
  int born_tick;                    // time of the call, seconds since 1970-01-01 00:00:00 UTC
  int duration;                     // seconds
  std::string local_sip_name;       // the phone's own account: its SIP user name
  std::string local_sip_server;     // and its SIP server
  std::string remote_sip_name;      // the other party's number
  std::string remote_sip_server;    // and its SIP server
  std::string remote_display_name;  // name that came with the call; a contact's name goes before it
  std::string forward_sip_name;     // forwarded calls: the number the call went to
  std::string forward_sip_server;   // and its SIP server
  std::string forward_display_name;  // name of that number; a contact's name goes before it

  CallLogAddItemData() { Reset(); }

  void Reset() {
    type = born_tick = duration = 0;
    local_sip_name.clear();
    local_sip_server.clear();
    remote_sip_name.clear();
    remote_sip_server.clear();
    remote_display_name.clear();
    forward_sip_name.clear();
    forward_sip_server.clear();
    forward_display_name.clear();
  }
};

// A contact whose name changed, filled by the caller. An empty number matches nothing.
class CallLogUpdateData {
 public:
  std::string number_1;
  std::string number_2;
  std::string number_3;
  std::string display_name;  // the name now; empty: the calls show their number again

  CallLogUpdateData() { Reset(); }

  void Reset() {
    number_1.clear();
    number_2.clear();
    number_3.clear();
    display_name.clear();
  }
};

// One row of a call list, filled by the module.
class CallLogSimpleData {
 public:
  std::string display_name;  // name, or the number where there is no name
  std::string time_text;  // time of the call; the local history: as the platform shows it in lists
  int type;               // call type; 0 where the source has none

  CallLogSimpleData() { Reset(); }

  void Reset() {
    display_name.clear();
    time_text.clear();
    type = 0;
  }
};

// One page of a call list.
class CallLogSimpleListData {
 public:
  std::list<CallLogSimpleData> items;  // the module appends the page's rows; hand in an empty list
  int request_index;                   // set by the caller: first row wanted, from 0
  int request_count;                   // set by the caller: number of rows wanted
  int total;                           // set by the module: number of rows of the whole list

  CallLogSimpleListData() { Reset(); }

  void Reset() {
    items.clear();
    request_index = request_count = total = 0;
  }
};

// The detail of one call. The module fills it without resetting it: hand in a reset record.
class CallLogDetailData {
 public:
  std::string display_name;   // name as stored; may be empty
  std::string number;         // the other party's number
  std::string server;         // the other party's SIP server
  std::string time_text;      // time of the call, in full
  std::string duration_text;  // "hh:mm:ss"; empty when the stored duration is negative
  std::string country_code;   // server call logs only; the local history leaves it as it is
  std::string image_path;     // path of the contact's photo; empty when there is none
  int type;                   // call type; 0 where the source has none

  CallLogDetailData() { Reset(); }

  void Reset() {
    display_name.clear();
    number.clear();
    server.clear();
    time_text.clear();
    duration_text.clear();
    country_code.clear();
    image_path.clear();
    type = 0;
  }
};

// One caller in the list of new missed calls. Rows differ by display_name alone.
class MissedCallData {
 public:
  std::string display_name;  // name, or the number where there is no name
  std::string number;        // number of the newest call of the row
  int count;                 // new missed calls of the row

  MissedCallData() { Reset(); }

  void Reset() {
    display_name.clear();
    number.clear();
    count = 0;
  }
};

// The list of new missed calls, newest caller first. The module appends to `items`: at most 21 rows
// per request; later callers are left out, though the idle screen counts them.
class MissedNotifyListData {
 public:
  std::list<MissedCallData> items;

  void Reset() { items.clear(); }
};

// One caller in the list of new forwarded calls. Rows differ by display_name alone.
class ForwardedCallData {
 public:
  std::string display_name;          // the caller's name, or number where there is no name
  std::string forward_display_name;  // where the newest call of the row went: name, or else number
  std::string number;                // the caller's number in the newest call of the row
  int count;                         // new forwarded calls of the row

  ForwardedCallData() { Reset(); }

  void Reset() {
    display_name.clear();
    forward_display_name.clear();
    number.clear();
    count = 0;
  }
};

// The list of new forwarded calls, newest caller first; at most 21 rows per request, as above.
class ForwardedNotifyList {
 public:
  std::list<ForwardedCallData> items;

  void Reset() { items.clear(); }
};

// One configured source of server call logs. All fields are text; empty means none.
class BroadSoftConfigItem {
 public:
  std::string name;    // label shown to the user; a source counts as configured when it has one
  std::string server;  // host, with a scheme ("https://") before it and a path behind it if need be
  std::string port;    // decimal
  std::string user_name;  // without it no credentials are sent
  std::string password;   // stored in the configuration file as it is, in plain text

  BroadSoftConfigItem() { Reset(); }

  void Reset() {
    name.clear();
    server.clear();
    port.clear();
    user_name.clear();
    password.clear();
  }
};

// One row of a search, filled by the module.
class CallLogSearchData {
 public:
  std::string display_name;  // name, or the number where there is no name
  std::string number;

  CallLogSearchData() { Reset(); }

  void Reset() {
    display_name.clear();
    number.clear();
  }
};

// One page of a search, or of the most dialled numbers.
class CallLogSearchListData {
 public:
  std::list<CallLogSearchData> items;  // the module appends the page's rows; hand in an empty list
  int request_index;                   // set by the caller: first row wanted, from 0
  int request_count;                   // set by the caller: number of rows wanted
  int total;                           // set by the module: number of rows of the whole result

  CallLogSearchListData() { Reset(); }

  void Reset() {
    items.clear();
    request_index = request_count = total = 0;
  }
};

// One row of the ten most dialled numbers, filled by the module; or one contact's name and number
// for UpdateDispName, filled by the caller.
class SuperSearchItemData {
 public:
  std::string display_name;
  std::string number;

  SuperSearchItemData() { Reset(); }

  void Reset() {
    display_name.clear();
    number.clear();
  }
};

// One page of the ten most dialled numbers.
class SuperSearchListData {
 public:
  std::list<SuperSearchItemData>
      items;                  // the module appends the page's rows; hand in an empty list
  void* host_data = nullptr;  // the UI application's own: the module neither reads nor writes it
  int request_index;          // set by the caller: first row wanted, from 0
  int request_count;  // set by the caller: passed to the platform, which may refuse the request;
                      // otherwise all rows from request_index on are filled
  int total;          // set by the module: number of distinct numbers, 10 at most

  SuperSearchListData() { Reset(); }

  void Reset() {
    items.clear();
    request_index = request_count = total = 0;
  }
};

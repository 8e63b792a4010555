// The local history in sections: store, file, notifications, views, names, search. What the file
// looks like is HistoryDocument's, how the count of new calls is shown NewCallStatus's, how hits
// are found CallLogSearchHelper's.
#include "CallLog/CallLogModel.h"

#include <tinyxml.h>

#include <algorithm>
#include <new>

#include "CallLog/CallLogSearchHelper.h"
#include "CallLog/Failure.h"
#include "CallLog/FileWriter.h"
#include "CallLog/HistoryDocument.h"
#include "CallLog/HistoryFormat.h"
#include "CallLog/KeyString.h"
#include "CallLog/NewCallStatus.h"
#include "CallLog/Paths.h"
#include "CallLog/RowRange.h"
#include "CallLog/XmlReader.h"
#include "CallTypes.h"
#include "platform/AccountManager.h"
#include "platform/CommonAPI.h"
#include "platform/ConfigParser.h"
#include "platform/Directory.h"
#include "platform/EtlMsgHandler.h"
#include "platform/EtlTrace.h"
#include "platform/SettingTime.h"
#include "platform/ThreadTimer.h"

using ETL_TraceHelper::etlTrace;

namespace NS_CALLLOG {
namespace {

using ItemData = CCallLogModel::ItemData;
using LogList = CCallLogModel::LogList;

constexpr int kMaxNotifyRows = 21;
constexpr int kPageTotal = 100;

constexpr unsigned int kSaveTimer = 90010;
constexpr unsigned int kSaveDelay = 5000;  // milliseconds

constexpr char kTimeSeparator[] = " ";

bool IsInView(const ItemData& item, int type) { return type == kAllTypes || item.type == type; }

bool IsViewType(int type) { return type >= kAllTypes && type <= kForwarded; }

bool IsNew(const ItemData& item, int type) { return item.type == type && item.is_new; }

const std::string& FirstNonEmpty(const std::string& first, const std::string& second) {
  return first.empty() ? second : first;
}

// The name under which a party is shown: the contact's, else the one that came with the call, else
// the number.
std::string ChooseName(const std::string& number, const std::string& given) {
  const std::string contact = Directory_GetContactNameByNumber(number.c_str());
  return FirstNonEmpty(contact, FirstNonEmpty(given, number));
}

bool HasNumber(const CallLogUpdateData& contact, const std::string& number) {
  return !number.empty() &&
         (contact.number_1 == number || contact.number_2 == number || contact.number_3 == number);
}

std::string HistoryPath() { return std::string(kConfigDirectory) + kHistoryFileName; }

// Clears the new mark of the records of `type` that `matches` takes; how many there were.
template <class Matches>
int MarkSeen(LogList* records, int type, Matches matches) {
  int seen = 0;
  for (ItemData& item : *records) {
    if (!IsNew(item, type) || !matches(item)) continue;
    item.is_new = false;
    ++seen;
  }
  return seen;
}

void WriteHistory(const LogList& records) {
  etlTrace(3, "--Call log: save call log file begin.");
  RewriteFile(HistoryPath(), PrintHistory(records));
  etlTrace(3, "--Call log: save call log file end.");
}

bool AnyRecord(const ItemData& /*item*/) { return true; }

struct HasRemoteNumber {
  const std::string& number;
  bool operator()(const ItemData& item) const { return item.remote_sip_name == number; }
};

// Tallies the new records of `type` by name, newest first. `fill` completes a row that is appended
// for its first record; names beyond the room of one request are left out. The rows change only
// once all is tallied.
template <class Row, class Fill>
void TallyNewCalls(const LogList& records, int type, std::list<Row>* rows, Fill fill) {
  std::list<Row> tally = *rows;
  int added = 0;
  for (const ItemData& item : records) {
    if (!IsNew(item, type)) continue;
    const std::string& name = FirstNonEmpty(item.remote_display_name, item.remote_sip_name);
    auto row = std::find_if(tally.begin(), tally.end(),
                            [&](const Row& other) { return other.display_name == name; });
    if (row == tally.end()) {
      if (added == kMaxNotifyRows) continue;
      ++added;
      row = tally.emplace(tally.end());
      row->display_name = name;
      row->number = item.remote_sip_name;
      fill(&*row, item);
    }
    ++row->count;
  }
  auto tallied = tally.begin();
  for (Row& row : *rows) row.count = (tallied++)->count;
  rows->splice(rows->end(), tally, tallied, tally.end());
}

}  // namespace

void CCallLogModel::ItemData::Reset() {
  local_sip_name.clear();
  local_sip_server.clear();
  remote_display_name.clear();
  remote_sip_name.clear();
  remote_sip_server.clear();
  forward_sip_name.clear();
  forward_sip_server.clear();
  forward_display_name.clear();
  key_string.clear();
  type = born_tick = duration = 0;
  is_new = false;
}

CCallLogModel::CCallLogModel() { MyInit(); }

CCallLogModel::~CCallLogModel() { MyFinal(); }

bool CCallLogModel::MyInit() {
  if (m_pSearchHelper == nullptr) m_pSearchHelper = std::make_unique<CCallLogSearchHelper>();
  return MyLoadDataFromFile();
}

bool CCallLogModel::MyFinal() {
  m_listLog.clear();
  return true;
}

// Store

int CCallLogModel::AddLog(const CallLogAddItemData& call) {
  if (configParser_GetConfigInt("HistorySavedSwitch") != 1) return -1;
  if (call.type < kOutgoing || call.type > kForwarded) return -1;
  if (call.type == kMissed) {
    const std::string fullName = call.local_sip_name + "@" + call.local_sip_server;
    const CAccount* account = CAccountManager::GetInstance()->GetAccountByFullName(fullName);
    if (account != nullptr && !account->IsSaveMissCallLog()) return -1;
  }

  ItemData item;
  item.type = call.type;
  item.born_tick = call.born_tick;
  item.duration = call.duration;
  item.local_sip_name = call.local_sip_name;
  item.local_sip_server = call.local_sip_server;
  etlTrace(3, "--Call log, to add log remote name(%s) forward to number(%s), forward to name(%s)",
           call.remote_display_name.c_str(), call.forward_sip_name.c_str(),
           call.forward_display_name.c_str());
  item.remote_display_name = ChooseName(call.remote_sip_name, call.remote_display_name);
  item.remote_sip_name = call.remote_sip_name;
  item.remote_sip_server = call.remote_sip_server;
  item.forward_display_name = ChooseName(call.forward_sip_name, call.forward_display_name);
  etlTrace(3, "--Call log: forwarder name is %s", item.forward_display_name.c_str());
  item.forward_sip_name = call.forward_sip_name;
  item.forward_sip_server = call.forward_sip_server;
  item.key_string = KeyStringOf(item.remote_display_name);
  item.is_new = true;

  const int result = MyInsertLog(item, true);
  if (result >= 0) {
    if (call.type == kMissed) MyAddMissedCall(1);
    if (call.type == kForwarded) MyAddForwardedCall(1);
    MyCheckStatus(call.type);
  }
  return result;
}

// A record is about to go; what was new about it no longer counts.
void CCallLogModel::MyForgetNew(const ItemData& item) {
  if (IsNew(item, kMissed)) {
    MyAddMissedCall(-1);
  } else if (IsNew(item, kForwarded)) {
    MyAddForwardedCall(-1);
  }
}

int CCallLogModel::MyInsertLog(const ItemData& added, bool setDirty) {
  LogList copy = OrFailure(LogList(), [&] { return LogList(1, added); });
  if (copy.empty()) return -1;
  const int type = added.type;  // the walk is what an add costs
  const int bornTick = added.born_tick;
  int sameType = 0;
  auto place = m_listLog.end();
  for (auto it = m_listLog.begin(); it != m_listLog.end();) {
    if (it->type == type && ++sameType >= kMaxRecordsPerType) {
      MyForgetNew(*it);
      it = m_listLog.erase(it);
      continue;
    }
    if (place == m_listLog.end() && it->born_tick < bornTick) place = it;
    ++it;
  }
  m_listLog.splice(place, copy);
  if (setDirty) MySetDirty(true);
  return 0;
}

bool CCallLogModel::UpdateLog(const CallLogUpdateData& contact) {
  for (ItemData& item : m_listLog) {
    if (HasNumber(contact, item.remote_sip_name)) {
      MySetDirty(true);
      item.remote_display_name = FirstNonEmpty(contact.display_name, item.remote_sip_name);
    }
    // The file holds no forward names, so a new one alone is nothing to save.
    if (item.type == kForwarded && HasNumber(contact, item.forward_sip_name)) {
      item.forward_display_name = FirstNonEmpty(contact.display_name, item.forward_sip_name);
    }
  }
  return true;
}

bool CCallLogModel::RemoveLog(int type, int index) {
  int row = -1;
  for (auto it = m_listLog.begin(); it != m_listLog.end(); ++it) {
    if (!IsInView(*it, type) || ++row != index) continue;
    LogList removed;  // who is told of the status may come back in, and must not meet the record
    MyForgetHits();
    removed.splice(removed.end(), m_listLog, it);
    MyForgetNew(removed.front());
    MyCheckStatus(type);
    MySetDirty(true);
    return true;
  }
  return false;
}

bool CCallLogModel::RemoveLogList(int type, const std::list<int>& indexes) {
  std::list<int> pending = indexes;
  bool removed = false;
  int row = -1;
  for (auto it = m_listLog.begin(); it != m_listLog.end() && !pending.empty();) {
    const bool inView = IsInView(*it, type);
    if (inView) ++row;
    const auto wanted = inView ? std::find(pending.begin(), pending.end(), row) : pending.end();
    if (wanted == pending.end()) {
      ++it;
    } else {
      MyForgetHits();
      MyForgetNew(*it);
      it = m_listLog.erase(it);
      pending.erase(wanted);
      removed = true;
    }
  }
  MyCheckStatus(type);
  if (removed) MySetDirty(true);
  return true;
}

bool CCallLogModel::RemoveAllLogs(int type) {
  MyClearLogListByType(type);
  if (type == kMissed || type == kAllTypes) MyClearMissedList();
  if (type == kForwarded || type == kAllTypes) MyClearForwardedList();
  MySetDirty(true);
  return true;
}

void CCallLogModel::MyClearLogListByType(int type) {
  MyForgetHits();
  m_listLog.remove_if([type](const ItemData& item) { return IsInView(item, type); });
}

// History file

// The search holds pointers to records: every change makes it forget them, and where records go
// before others are told, it forgets them first.
void CCallLogModel::MyForgetHits() {
  if (m_pSearchHelper != nullptr) m_pSearchHelper->ResetKey();
}

void CCallLogModel::MySetDirty(bool bDirty) {
  if (bDirty) MyForgetHits();
  if (m_bDirty == bDirty) return;
  m_bDirty = bDirty;
  if (m_bDirty) timerSetThreadTimer(kSaveTimer, kSaveDelay);
}

bool CCallLogModel::MyGetDirty() const { return m_bDirty; }

bool CCallLogModel::HandleTimeoutMessage(ETL_MsgQueueHelper::msgObject& msg) {
  if (msg.message != kTimerMessage || msg.wParam != kSaveTimer) return false;
  return SaveToFile();
}

bool CCallLogModel::SaveToFile() {
  if (!MyGetDirty()) return false;
  timerKillThreadTimer(kSaveTimer);
  const bool written = OrFailure(false, [this] {
    WriteHistory(m_listLog);
    return true;
  });
  if (written) {
    MySetDirty(false);
  } else {
    timerSetThreadTimer(kSaveTimer, kSaveDelay);  // the file is as it was; try again later
  }
  return written;
}

bool CCallLogModel::MyLoadDataFromFile() {
  TiXmlDocument document;
  if (!LoadXmlFile(&document, HistoryPath())) return false;
  TiXmlElement* const root = document.FirstChildElement(kHistoryRoot);
  if (root == nullptr) return false;
  bool complete = true;
  ItemData item;
  for (TiXmlElement* element = root->FirstChildElement(kHistoryItem); element != nullptr;
       element = element->NextSiblingElement(kHistoryItem)) {
    if (!ReadHistoryItem(element, &item) || MyInsertLog(item, false) < 0) complete = false;
  }
  return complete;
}

// Notifications

bool CCallLogModel::MyAddMissedCall(int nAdd) {
  m_nMissedCount = std::max(0, m_nMissedCount + nAdd);
  return true;
}

bool CCallLogModel::MyAddForwardedCall(int nAdd) {
  m_nForwardCount = std::max(0, m_nForwardCount + nAdd);
  return true;
}

int CCallLogModel::MyGetMissedCount() const { return m_nMissedCount; }

int CCallLogModel::MyGetForwardCount() const { return m_nForwardCount; }

void CCallLogModel::MyClearMissedList() {
  etlTrace(3, "--Call log: begin to clear missed notify list.");
  if (m_nMissedCount > 0) MarkSeen(&m_listLog, kMissed, AnyRecord);
  m_nMissedCount = 0;
  MyCheckStatus(kMissed);
}

void CCallLogModel::MyClearForwardedList() {
  etlTrace(3, "--Call log: begin to clear forward notify list.");
  if (m_nForwardCount > 0) MarkSeen(&m_listLog, kForwarded, AnyRecord);
  m_nForwardCount = 0;
  MyCheckStatus(kForwarded);
}

void CCallLogModel::RemoveMissedDirtyByNumber(const std::string& strNumber) {
  MyAddMissedCall(-MarkSeen(&m_listLog, kMissed, HasRemoteNumber{strNumber}));
  MyCheckStatus(kMissed);
}

void CCallLogModel::RemoveForwardDirtyByNumber(const std::string& strNumber) {
  MyAddForwardedCall(-MarkSeen(&m_listLog, kForwarded, HasRemoteNumber{strNumber}));
  MyCheckStatus(kForwarded);
}

// A call stops being new when its list is opened or its number is dealt with, not here.
void CCallLogModel::ResetMissedCall() {}

void CCallLogModel::ResetForwardedCall() {}

void CCallLogModel::MyCheckStatus(int type) {
  if (type == kMissed || type == kAllTypes) PublishMissedCount(MyGetMissedCount());
  if (type == kForwarded || type == kAllTypes) PublishForwardedCount(MyGetForwardCount());
}

bool CCallLogModel::GetMissedNotifyList(MissedNotifyListData* pData) const {
  if (pData == nullptr) return false;
  etlTrace(3, "--Call log: begin to get missed notify list");
  TallyNewCalls(m_listLog, kMissed, &pData->items, [](MissedCallData*, const ItemData&) {});
  etlTrace(3, "--Call log: get missed count is %d", static_cast<int>(pData->items.size()));
  return true;
}

bool CCallLogModel::GetForwardedNotifyList(ForwardedNotifyList* pData) const {
  if (pData == nullptr) return false;
  TallyNewCalls(
      m_listLog, kForwarded, &pData->items, [](ForwardedCallData* row, const ItemData& item) {
        row->forward_display_name = FirstNonEmpty(item.forward_display_name, item.forward_sip_name);
      });
  return true;
}

// Views

bool CCallLogModel::GetLogListByType(CallLogSimpleListData* list, int type) {
  etlTrace(3, "--Call log, get %d log list.", type);
  if (list == nullptr || !IsViewType(type)) return false;
  const auto rows = RequestedRows(*list, kPageTotal);
  if (!rows) return false;
  std::list<CallLogSimpleData> page;
  int row = -1;
  for (const ItemData& item : m_listLog) {
    if (!IsInView(item, type) || !rows->Contains(++row)) continue;
    MyID2CLSD(&page.emplace_back(), item);
  }
  list->items.splice(list->items.end(), page);
  if (type == kMissed || type == kAllTypes) MyClearMissedList();
  if (type == kForwarded || type == kAllTypes) MyClearForwardedList();
  list->total = row + 1;
  return true;
}

bool CCallLogModel::GetLogDetailByIndex(CallLogDetailData* detail, int type, int index) const {
  if (detail == nullptr || !IsViewType(type) || index < 0) return false;
  int row = -1;
  for (const ItemData& item : m_listLog) {
    if (IsInView(item, type) && ++row == index) return MyID2CLDD(detail, item);
  }
  return false;
}

bool CCallLogModel::MyID2CLSD(CallLogSimpleData* row, const ItemData& item) const {
  if (row == nullptr) return false;
  row->display_name = FirstNonEmpty(item.remote_display_name, item.remote_sip_name);
  row->time_text = Setting_CallLogTime2String(item.born_tick, kTimeSeparator);
  row->type = item.type;
  return true;
}

bool CCallLogModel::MyID2CLDD(CallLogDetailData* detail, const ItemData& item) const {
  if (detail == nullptr) return false;
  CallLogDetailData filled = *detail;
  filled.display_name = item.remote_display_name;
  filled.number = item.remote_sip_name;
  filled.server = item.remote_sip_server;
  filled.time_text = Setting_Time2String(item.born_tick, kTimeSeparator);
  filled.duration_text = MyGenDurationString(item.duration);
  filled.image_path = Directory_GetContactImageByNumber(item.remote_sip_name.c_str(), "");
  filled.type = item.type;
  *detail = std::move(filled);
  return true;
}

std::string CCallLogModel::MyGenDurationString(int seconds) const {
  if (seconds < 0) return {};
  return CommonAPI_FormatString("%02d:%02d:%02d", seconds / 3600, seconds / 60 % 60, seconds % 60);
}

std::string CCallLogModel::GetImagePathByType(int type) const {
  static constexpr const char* kFileNames[] = {"general_outgoing.png", "general_missed.png",
                                               "general_recieved.png", "general_forwarded.png"};
  if (type < kOutgoing || type > kForwarded) return {};
  return std::string(kIconDirectory) + kFileNames[type - kOutgoing];
}

std::string CCallLogModel::GetLastNewInCall() const {
  for (const ItemData& item : m_listLog) {
    if (item.type != kOutgoing) return item.remote_sip_name;
  }
  return {};
}

std::string CCallLogModel::GetLastOutCall() const {
  for (const ItemData& item : m_listLog) {
    if (item.type == kOutgoing) return item.remote_sip_name;
  }
  return {};
}

int CCallLogModel::GetLastOutCallAccounId() {
  for (const ItemData& item : m_listLog) {
    if (item.type != kOutgoing) continue;
    const CAccount* account =
        CAccountManager::GetInstance()->GetAccountBySIPName(item.local_sip_name);
    if (account != nullptr && account->IsAccountUsable()) return account->GetAccountId();
  }
  return -1;
}

// Contact names: a refresh that memory cuts short is saved as far as it came.

bool CCallLogModel::ResetLogContactName() {
  const bool complete = OrFailure(false, [this] {
    for (ItemData& item : m_listLog) {
      item.remote_display_name = item.remote_sip_name;
      if (item.type == kForwarded) item.forward_display_name = item.forward_sip_name;
    }
    return true;
  });
  const bool bDirty = !m_listLog.empty();
  etlTrace(3, "CCallLogModel::ResetLogContactName: -------- bDirty = %d", bDirty ? 1 : 0);
  if (bDirty) MySetDirty(true);
  return complete;
}

void CCallLogModel::UpdateDispName(const std::list<SuperSearchItemData>& names) {
  etlTrace(3, "CCallLogModel::UpdateDispName update begin");
  for (const SuperSearchItemData& entry : names) {
    for (ItemData& item : m_listLog) {
      if (item.remote_sip_name == entry.number) {
        MySetDirty(true);
        item.remote_display_name = entry.display_name;
      }
      if (item.forward_sip_name == entry.number) {
        MySetDirty(true);
        item.forward_display_name = entry.display_name;
      }
    }
  }
  etlTrace(3, "CCallLogModel::UpdateDispName update end");
}

// Search

bool CCallLogModel::Search(CallLogSearchListData* result, const std::string& key) {
  return m_pSearchHelper != nullptr && m_pSearchHelper->Search(result, key);
}

bool CCallLogModel::SearchRecentOutCall(CallLogSearchListData* result) const {
  return m_pSearchHelper != nullptr && m_pSearchHelper->SearchRecentOutCall(result);
}

bool CCallLogModel::SearchRecentOutCall(SuperSearchListData* result) const {
  return m_pSearchHelper != nullptr && m_pSearchHelper->SearchRecentOutCall(result);
}

}  // namespace NS_CALLLOG

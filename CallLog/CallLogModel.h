// The local call history: the store of calls, newest first, with its file, its notifications and
// the views that the UI sees.
#pragma once

#include <list>
#include <memory>
#include <string>

#include "CallLogRecords.h"

namespace ETL_MsgQueueHelper {
class msgObject;
}

namespace NS_CALLLOG {

// The thread-timer message; its wParam is the timer's id.
inline constexpr unsigned int kTimerMessage = 0x8113;

class CCallLogSearchHelper;

class CCallLogModel {
 public:
  // One stored call.
  class ItemData {
   public:
    // What a walk over the records looks at stands first, where the list's links are.
    int type;  // 1 to 4; a damaged file can bring in any other
    int born_tick;
    int duration;
    bool is_new;  // added in this run and not yet seen
    std::string local_sip_name;
    std::string local_sip_server;
    std::string remote_display_name;
    std::string remote_sip_name;
    std::string remote_sip_server;
    std::string forward_sip_name;
    std::string forward_sip_server;
    std::string forward_display_name;
    std::string key_string;  // key-pad form of the name that the record was built with

    ItemData() { Reset(); }
    void Reset();
  };

  using LogList = std::list<ItemData>;

  CCallLogModel();
  ~CCallLogModel();
  CCallLogModel(const CCallLogModel&) = delete;
  CCallLogModel& operator=(const CCallLogModel&) = delete;

  int AddLog(const CallLogAddItemData& call);
  bool UpdateLog(const CallLogUpdateData& contact);
  bool RemoveLog(int type, int index);
  bool RemoveLogList(int type, const std::list<int>& indexes);
  bool RemoveAllLogs(int type);

  bool SaveToFile();
  bool HandleTimeoutMessage(ETL_MsgQueueHelper::msgObject& msg);

  bool GetMissedNotifyList(MissedNotifyListData* pData) const;
  bool GetForwardedNotifyList(ForwardedNotifyList* pData) const;
  void ResetMissedCall();
  void ResetForwardedCall();
  void RemoveMissedDirtyByNumber(const std::string& strNumber);
  void RemoveForwardDirtyByNumber(const std::string& strNumber);

  bool GetLogListByType(CallLogSimpleListData* list, int type);
  bool GetLogDetailByIndex(CallLogDetailData* detail, int type, int index) const;
  std::string GetImagePathByType(int type) const;
  std::string GetLastNewInCall() const;
  std::string GetLastOutCall() const;
  int GetLastOutCallAccounId();

  bool ResetLogContactName();
  void UpdateDispName(const std::list<SuperSearchItemData>& names);

  bool Search(CallLogSearchListData* result, const std::string& key);
  bool SearchRecentOutCall(CallLogSearchListData* result) const;
  bool SearchRecentOutCall(SuperSearchListData* result) const;

 private:
  friend class CCallLogSearchHelper;  // reads m_listLog

  bool MyInit();
  bool MyFinal();

  int MyInsertLog(const ItemData& added, bool setDirty);
  void MyClearLogListByType(int type);
  void MyForgetNew(const ItemData& item);

  bool MyLoadDataFromFile();
  void MySetDirty(bool bDirty);
  void MyForgetHits();
  bool MyGetDirty() const;

  bool MyAddMissedCall(int nAdd);
  bool MyAddForwardedCall(int nAdd);
  int MyGetMissedCount() const;
  int MyGetForwardCount() const;
  void MyClearMissedList();
  void MyClearForwardedList();
  void MyCheckStatus(int type);

  bool MyID2CLSD(CallLogSimpleData* row, const ItemData& item) const;
  bool MyID2CLDD(CallLogDetailData* detail, const ItemData& item) const;
  std::string MyGenDurationString(int seconds) const;

  LogList m_listLog;  // all types, by born_tick, newest first
  std::unique_ptr<CCallLogSearchHelper> m_pSearchHelper;
  int m_nMissedCount = 0;
  int m_nForwardCount = 0;
  bool m_bDirty = false;
};

}  // namespace NS_CALLLOG

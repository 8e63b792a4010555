// The server call logs: the configured sources with their file, the lists downloaded from them, and
// the views of these lists.
#pragma once

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "CallLogRecords.h"
#include "platform/TaskAction.h"

class TiXmlElement;

namespace NS_CALLLOG {

class CBSCallLogModel : public NS_TA::CTaskActionCallbackBase {
 public:
  enum ListState {
    LIST_STATE_NONE = 0,         // just created or just emptied
    LIST_STATE_READY = 1,        // its transfer is to be started
    LIST_STATE_DOWNLOADING = 2,  // its transfer was handed to the platform
    LIST_STATE_LOADED = 3,       // `records` holds the document's entries
    LIST_STATE_FAILED = 4,       // the transfer or the reading failed
    LIST_STATE_CANCELLED = 5,    // what its transfer brings will be discarded
  };

  // One downloaded list.
  class ListItemData {
   public:
    std::vector<std::unique_ptr<CallLogDetailData>> records;  // in document order
    int state;

    ListItemData() { Reset(); }
    void Reset() {
      records.clear();
      state = LIST_STATE_NONE;
    }
  };

  CBSCallLogModel();
  ~CBSCallLogModel() override;
  void OnTaskActionCallback(NS_TA::CTaskAction* action) override;

  int GetLogListByClickAction(CallLogSimpleListData* list, const std::string& clickAction,
                              const std::string& query, bool refresh);
  bool GetLogDetailByIndex(CallLogDetailData* detail, int index);
  bool CancelDownload();

  bool IsBroadSoftCallLogConfigured() const;
  bool IsAddCountryCode();
  bool IsItemConfigured(int index) const;
  int GetTotalConfigurableItemCount() const;
  std::string GetConfiguredItemName(int index) const;
  BroadSoftConfigItem* GetConfigDataByIndex(int index) const;
  bool SetConfigDataByIndex(int index, const BroadSoftConfigItem& item);
  std::string GetBSCallLogDisplayName();
  bool SetBSCallLogDisplayName(const char* name);
  bool ReloadBSCallLogConfig();
  bool CreateBroadSoftCallLogList(std::string& path);

 private:
  bool MyInit();
  bool MyFinal();

  bool MyLoadDataFromXmlConfig(const std::string& fileName);
  bool MySaveConfig();
  bool MyClearConfigVector();
  bool MyGetConfigDirty() const;
  void MySetConfigDirty(bool dirty);

  ListItemData* MyFindItemData(const std::string& url);
  const ListItemData* MyFindItemData(const std::string& url) const;
  std::string MyGenFullUrl(const BroadSoftConfigItem& item) const;
  std::string MyFormatQueryArgs(const std::string& args);
  int MyMakeReadyForDownload(const std::string& url);
  int MyExecDownload(const std::string& url, bool sync);
  void MyTakeOver(const NS_TA::CNetworkFileAction& ended);
  bool MyLoadDataFromFile(ListItemData* list, const std::string& path);
  std::unique_ptr<CallLogDetailData> MyReadEntry(TiXmlElement* entry);
  std::string CallLogTime2DisplayTime(const char* text, int withYear);

  bool MyCopyList(CallLogSimpleListData* list, const ListItemData* item);
  bool MyClearMap();
  bool MyRemoveListByUrl(const std::string& url);

  std::map<std::string, std::unique_ptr<ListItemData>> m_mapListData;  // by full URL
  std::vector<std::unique_ptr<BroadSoftConfigItem>> m_vecConfigItem;   // in file order
  std::string m_strCurrentUrl;  // of the list that the UI asked for last
  bool m_bConfigDirty = false;
  std::string m_strDisplayName;
};

}  // namespace NS_CALLLOG

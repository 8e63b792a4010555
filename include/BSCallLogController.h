// The call logs kept on servers, as the UI's pages reach them.
#pragma once

#include <memory>
#include <string>

#include "BSListResult.h"
#include "CallLogExport.h"
#include "CallLogRecords.h"

namespace NS_CALLLOG {

class CBSCallLogModel;

// One per process. Sources are numbered from 0, in the order of the configuration file
// /config/data/broadsoft_calllog_list.xml; a click action names one as "broadsoft_calllog_" and its
// number. A list is fetched once per URL and served from memory until it is cancelled, or any
// request comes with `refresh`. Its rows carry the server's time as "mm-dd-yyyy hh:mm:ss".
//
// When a download has ended, the application gets MSG_BS_CALLLOG_DOWNLOADED (CallLogMessages.h).
// When there is no memory even for that, no message is sent, and the list may count as being
// fetched until it is cancelled or refreshed.
class CBSCallLogController {
 public:
  // The controller. The first call creates it and loads the configuration file, which is created
  // with six empty sources when it does not exist. Null when there is no memory for it; the next
  // call tries again.
  CALLLOG_EXPORT static CBSCallLogController* GetInstance();

  // Destroys the controller with all sources and lists. What a running transfer brings reaches
  // nobody.
  CALLLOG_EXPORT static void ReleaseInstance();

  // Fills one page of a source's list, or starts its download. `query` looks for a name on the
  // server; empty for the whole list. It goes into the URL as it stands, with "?name=" before it
  // when it does not stand there already: the caller percent-encodes the name (UTF-8), or "C#"
  // arrives as "C" and "a&b" as "a". `refresh` first drops every downloaded list of every source
  // (not with a null page or an empty action). A BSListResult.
  CALLLOG_EXPORT int GetLogListByClickAction(CallLogSimpleListData* page,
                                             const std::string& clickAction,
                                             const std::string& query, bool refresh);

  // Copies the entry at `index` (from 0) of the list that was asked for last, also while it is
  // fetched anew and after that has failed. False, and `detail` untouched, for null and for no such
  // entry.
  CALLLOG_EXPORT bool GetLogDetailByIndex(CallLogDetailData* detail, int index) const;

  // Discards what the list asked for last is being sent, and lets the next request fetch it again.
  // False when there is no such list: none was asked for, its request found no network, or all
  // lists were dropped since.
  CALLLOG_EXPORT bool CancelDownload();

  // Not offered for server call logs: always false.
  CALLLOG_EXPORT bool AddToLocalDir(int index);
  CALLLOG_EXPORT bool AddToLocalBlackDir(int index);

  // True when the configuration value "BDDirectoryShowSwitch" is 1 and some source has a name.
  CALLLOG_EXPORT bool IsBroadSoftCallLogConfigured() const;

  // True when there is a source `index` and it has a name.
  CALLLOG_EXPORT bool IsItemConfigured(int index) const;

  // Number of sources, with a name or without; -1 when the controller holds no model.
  CALLLOG_EXPORT int GetTotalConfigurableItemCount() const;

  // Name of a source; empty when there is no such source.
  CALLLOG_EXPORT std::string GetConfiguredItemName(int index) const;

  // A source, or null when there is no such source. It stays the module's, which is told of a
  // change by SetConfigDataByIndex() alone, and is valid until the next reload.
  CALLLOG_EXPORT BroadSoftConfigItem* GetConfigDataByIndex(int index) const;

  // Replaces a source and writes the configuration file; nothing happens when there is no such
  // source. Lists already downloaded stay, under the URLs of before. When memory runs out, the file
  // stays as it was.
  CALLLOG_EXPORT void SetConfigDataByIndex(int index, const BroadSoftConfigItem& item);

  // The name under which the phone's menu shows the server call logs: the file's, also after a
  // reload that failed; empty when it has none.
  CALLLOG_EXPORT std::string GetBSCallLogDisplayName();

  // Drops the sources and reads the configuration file again (creating it when it is gone);
  // downloaded lists stay. False when it cannot be read or is no such file: there are no sources
  // then.
  CALLLOG_EXPORT bool ReloadBSCallLogConfig();

  CBSCallLogController(const CBSCallLogController&) = delete;
  CBSCallLogController& operator=(const CBSCallLogController&) = delete;

 private:
  CBSCallLogController();
  ~CBSCallLogController();
  bool MyInit();
  bool MyFinal();

  static CBSCallLogController* m_pInst;
  std::unique_ptr<CBSCallLogModel> m_pModel;
};

}  // namespace NS_CALLLOG

// The server call logs in three parts: the sources, the download, the views. What the sources' file
// looks like is BSConfigDocument's, how a time stamp is read ServerTime's, how a file is read
// XmlReader's.
#include "CallLog/BSCallLogModel.h"

#include <tinyxml.h>

#include <algorithm>

#include "BSListResult.h"
#include "CallLog/BSConfigDocument.h"
#include "CallLog/Failure.h"
#include "CallLog/FileWriter.h"
#include "CallLog/Paths.h"
#include "CallLog/RowRange.h"
#include "CallLog/ServerTime.h"
#include "CallLog/XmlReader.h"
#include "CallLogMessages.h"
#include "platform/CommonAPI.h"
#include "platform/ConfigParser.h"
#include "platform/EtlMisc.h"
#include "platform/EtlMsgHandler.h"
#include "platform/EtlTrace.h"
#include "platform/NetStatus.h"
#include "platform/TinyXmlHelper.h"

using ETL_TraceHelper::etlTrace;

namespace NS_CALLLOG {
namespace {

constexpr std::size_t kUsualSources = 3;
constexpr int kNetworkFileRequest = 2;
constexpr int kNetworkAvailable = 2;
constexpr char kEntry[] = "callLogsEntry";

std::string TemporaryPath() { return std::string(kTemporaryDirectory) + kDownloadFileName; }

using Action = std::unique_ptr<NS_TA::CNetworkFileAction, void (*)(NS_TA::CNetworkFileAction*)>;

// As TinyXML itself would save it, but for what happens when memory runs out meanwhile.
void WriteDocument(const std::string& path, const TiXmlDocument& document) {
  TiXmlPrinter printer;
  document.Accept(&printer);
  RewriteFile(path, printer.Str());
}

// Text of the first child element `name`; empty when there is none.
std::string ChildText(TiXmlElement* element, const char* name) {
  TiXmlElement* const child = element->FirstChildElement(name);
  return child != nullptr ? TinyXml_GetElemText(child, "") : std::string();
}

}  // namespace

CBSCallLogModel::CBSCallLogModel() { MyInit(); }

CBSCallLogModel::~CBSCallLogModel() { MyFinal(); }

bool CBSCallLogModel::MyInit() {
  m_vecConfigItem.reserve(kUsualSources);
  return MyLoadDataFromXmlConfig(kSourcesFileName);
}

bool CBSCallLogModel::MyFinal() {
  const bool sourcesCleared = MyClearConfigVector();
  const bool listsCleared = MyClearMap();
  return sourcesCleared && listsCleared;
}

// Configuration

bool CBSCallLogModel::MyLoadDataFromXmlConfig(const std::string& fileName) {
  std::string path = kConfigDirectory + fileName;
  etlTrace(3, "CallLog: LoadDataFrom %s", path.c_str());
  if (!ETL_MiscHelper::pathFileExist(path.c_str()) && !CreateBroadSoftCallLogList(path)) {
    return false;
  }
  TiXmlDocument document;
  if (!LoadXmlFile(&document, path)) return false;
  TiXmlElement* const root = document.FirstChildElement(kSourcesRoot);
  if (root == nullptr) return false;
  const bool whole = OrFailure(false, [&] {
    m_strDisplayName = TinyXml_GetStringAttr(root, kDisplayNameAttribute, "");
    for (TiXmlElement* element = root->FirstChildElement(kSourceItem); element != nullptr;
         element = element->NextSiblingElement(kSourceItem)) {
      auto item = std::make_unique<BroadSoftConfigItem>();
      ReadSource(element, item.get());
      m_vecConfigItem.push_back(std::move(item));
    }
    return true;
  });
  if (!whole) MyClearConfigVector();  // a part of the sources, saved later, would cost the others
  return whole;
}

// What becomes of the save shows when the file is loaded.
bool CBSCallLogModel::CreateBroadSoftCallLogList(std::string& path) {
  constexpr int kDefaultSources = 6;
  TiXmlDocument document;
  document.LinkEndChild(new TiXmlDeclaration("1.0", "UTF-8", ""));
  TiXmlElement* const root = AppendSourcesRoot(&document, "");
  for (int i = 0; i < kDefaultSources; ++i) AppendSource(root, BroadSoftConfigItem());
  WriteDocument(path, document);
  return true;
}

bool CBSCallLogModel::MySaveConfig() {
  if (!MyGetConfigDirty()) return false;
  MySetConfigDirty(false);  // also when memory runs out: later there may be other sources, or none
  TiXmlDocument document;
  auto declaration = std::make_unique<TiXmlDeclaration>();
  declaration->Parse("<?xml version='1.0' encoding='UTF-8'?>", nullptr, TIXML_ENCODING_UTF8);
  document.LinkEndChild(declaration.release());
  TiXmlElement* const root = AppendSourcesRoot(&document, m_strDisplayName);
  for (const auto& item : m_vecConfigItem) AppendSource(root, *item);
  WriteDocument(std::string(kConfigDirectory) + kSourcesFileName, document);
  return true;
}

bool CBSCallLogModel::MyClearConfigVector() {
  m_vecConfigItem.clear();
  return true;
}

bool CBSCallLogModel::MyGetConfigDirty() const { return m_bConfigDirty; }

void CBSCallLogModel::MySetConfigDirty(bool dirty) { m_bConfigDirty = dirty; }

int CBSCallLogModel::GetTotalConfigurableItemCount() const {
  return static_cast<int>(m_vecConfigItem.size());
}

BroadSoftConfigItem* CBSCallLogModel::GetConfigDataByIndex(int index) const {
  if (index < 0 || index >= GetTotalConfigurableItemCount()) return nullptr;
  return m_vecConfigItem[static_cast<std::size_t>(index)].get();
}

bool CBSCallLogModel::SetConfigDataByIndex(int index, const BroadSoftConfigItem& item) {
  if (index >= 0 && index < GetTotalConfigurableItemCount()) {
    BroadSoftConfigItem whole = item;
    *m_vecConfigItem[static_cast<std::size_t>(index)] = std::move(whole);
    MySetConfigDirty(true);
  }
  return MySaveConfig();
}

bool CBSCallLogModel::IsItemConfigured(int index) const {
  return !GetConfiguredItemName(index).empty();
}

std::string CBSCallLogModel::GetConfiguredItemName(int index) const {
  const BroadSoftConfigItem* const item = GetConfigDataByIndex(index);
  return item != nullptr ? item->name : std::string();
}

std::string CBSCallLogModel::GetBSCallLogDisplayName() { return m_strDisplayName; }

bool CBSCallLogModel::SetBSCallLogDisplayName(const char* name) {
  m_strDisplayName = name != nullptr ? name : "";
  MySetConfigDirty(true);
  return true;
}

bool CBSCallLogModel::IsBroadSoftCallLogConfigured() const {
  if (configParser_GetConfigInt("BDDirectoryShowSwitch") != 1) return false;
  for (const auto& item : m_vecConfigItem) {
    if (!item->name.empty()) return true;
  }
  return false;
}

bool CBSCallLogModel::IsAddCountryCode() {
  return configParser_GetConfigInt("BSCallLogAddCountryCode") == 1;
}

bool CBSCallLogModel::ReloadBSCallLogConfig() {
  const bool cleared = MyClearConfigVector();
  const bool loaded = MyLoadDataFromXmlConfig(kSourcesFileName);
  return cleared && loaded;
}

// Download

CBSCallLogModel::ListItemData* CBSCallLogModel::MyFindItemData(const std::string& url) {
  const auto found = m_mapListData.find(url);
  return found != m_mapListData.end() ? found->second.get() : nullptr;
}

const CBSCallLogModel::ListItemData* CBSCallLogModel::MyFindItemData(const std::string& url) const {
  const auto found = m_mapListData.find(url);
  return found != m_mapListData.end() ? found->second.get() : nullptr;
}

std::string CBSCallLogModel::MyGenFullUrl(const BroadSoftConfigItem& item) const {
  constexpr std::string_view kSchemeEnd = "://";
  const std::string& server = item.server;
  if (server.empty()) return {};
  const std::size_t scheme = server.find(kSchemeEnd);
  const std::size_t host = scheme == std::string::npos ? 0 : scheme + kSchemeEnd.size();
  std::string url = scheme == std::string::npos ? "http://" : server.substr(0, host);
  if (!item.user_name.empty()) url += item.user_name + ":" + item.password + "@";
  const std::size_t path = std::min(server.find('/', host), server.size());
  url += server.substr(host, path - host);
  if (!item.port.empty()) url += ":" + item.port;
  return url + server.substr(path);
}

std::string CBSCallLogModel::MyFormatQueryArgs(const std::string& args) {
  constexpr std::string_view kNameQuery = "?name=";
  if (args.empty() || args.compare(0, kNameQuery.size(), kNameQuery) == 0) return args;
  return std::string(kNameQuery) + args;
}

int CBSCallLogModel::MyMakeReadyForDownload(const std::string& url) {
  ListItemData* item = MyFindItemData(url);
  if (item == nullptr) {
    item = m_mapListData.emplace(url, std::make_unique<ListItemData>()).first->second.get();
  }
  if (item->state == LIST_STATE_DOWNLOADING || item->state == LIST_STATE_LOADED) {
    return item->state;
  }
  item->state = LIST_STATE_READY;
  return item->state;
}

int CBSCallLogModel::MyExecDownload(const std::string& url, bool sync) {
  ListItemData* const item = MyFindItemData(url);
  if (item == nullptr || item->state != LIST_STATE_READY) return LIST_STATE_FAILED;
  const std::string localPath = TemporaryPath();
  etlTrace(2, "CallLog: ExecDownload localPath[%s], remoteUrl[%s]", localPath.c_str(), url.c_str());
  Action action(TaskAction_CreateNetworkFileAction(localPath.c_str(), url.c_str()),
                TaskAction_DestroyNetworkFileAction);
  if (action == nullptr) return LIST_STATE_FAILED;
  item->state = LIST_STATE_DOWNLOADING;
  action->SetRead(true);
  action->SetSync(sync);
  action->SetCallback(this);
  // Refused, it is destroyed here: nobody will call back with it.
  if (!TaskAction_ExecAction(action.get())) return LIST_STATE_FAILED;
  static_cast<void>(action.release());  // its completion brings it back
  return LIST_STATE_DOWNLOADING;
}

void CBSCallLogModel::OnTaskActionCallback(NS_TA::CTaskAction* action) {
  etlTrace(3, "CBSCallLogModel::OnTaskActionCallback begin");
  if (action == nullptr || action->GetRequestType() != kNetworkFileRequest) return;
  const Action ended(static_cast<NS_TA::CNetworkFileAction*>(action),
                     TaskAction_DestroyNetworkFileAction);
  IgnoreFailure([&] { MyTakeOver(*ended); });
}

void CBSCallLogModel::MyTakeOver(const NS_TA::CNetworkFileAction& ended) {
  const std::string url = ended.GetFilePathRemote();
  ListItemData* const item = MyFindItemData(url);
  if (item == nullptr || item->state == LIST_STATE_CANCELLED) return;
  if (ended.IsOperationSucceed()) {
    if (item->state != LIST_STATE_DOWNLOADING) return;
    const bool loaded =
        OrFailure(false, [&] { return MyLoadDataFromFile(item, ended.GetFilePath()); });
    item->state = loaded ? LIST_STATE_LOADED : LIST_STATE_FAILED;
  } else {
    item->state = LIST_STATE_FAILED;
  }
  EtlMsgHandler_NotifyAppEx(false, MSG_BS_CALLLOG_DOWNLOADED, 0,
                            item->state == LIST_STATE_LOADED ? 0 : 1,
                            static_cast<int>(url.size()) + 1, url.c_str());
}

bool CBSCallLogModel::MyLoadDataFromFile(ListItemData* list, const std::string& path) {
  if (list == nullptr || path.empty() || !ETL_MiscHelper::pathFileExist(path.c_str())) {
    return false;
  }
  TiXmlDocument document;
  if (!LoadXmlFile(&document, path)) return false;
  list->Reset();
  TiXmlElement* const root = document.RootElement();
  if (root == nullptr) return false;
  std::vector<std::unique_ptr<CallLogDetailData>> records;
  for (TiXmlElement* entry = root->FirstChildElement(kEntry); entry != nullptr;
       entry = entry->NextSiblingElement(kEntry)) {
    records.push_back(MyReadEntry(entry));
  }
  list->records.swap(records);
  return true;
}

std::unique_ptr<CallLogDetailData> CBSCallLogModel::MyReadEntry(TiXmlElement* entry) {
  auto record = std::make_unique<CallLogDetailData>();
  record->display_name = ChildText(entry, "name");
  record->number = ChildText(entry, "phoneNumber");
  if (entry->FirstChildElement("time") != nullptr) {
    record->time_text = CallLogTime2DisplayTime(ChildText(entry, "time").c_str(), 1);
  }
  record->country_code = ChildText(entry, "countryCode");
  return record;
}

std::string CBSCallLogModel::CallLogTime2DisplayTime(const char* text, int withYear) {
  return FormatServerTime(ScanServerTime(text), withYear != 0);
}

bool CBSCallLogModel::CancelDownload() {
  ListItemData* const item = MyFindItemData(m_strCurrentUrl);
  if (item == nullptr) return false;
  item->state = LIST_STATE_CANCELLED;
  return true;
}

// Views

int CBSCallLogModel::GetLogListByClickAction(CallLogSimpleListData* list,
                                             const std::string& clickAction,
                                             const std::string& query, bool refresh) {
  if (list == nullptr || clickAction.empty()) return BS_LIST_INVALID;
  if (refresh) MyClearMap();
  const int index = CommonAPI_ParseIdByClickAction(clickAction, "broadsoft_calllog_x");
  if (index < 0) return BS_LIST_NOT_CONFIGURED;
  const BroadSoftConfigItem* const source = GetConfigDataByIndex(index);
  if (source == nullptr) return BS_LIST_NOT_CONFIGURED;
  std::string url = MyGenFullUrl(*source);
  if (url.empty()) return BS_LIST_NOT_CONFIGURED;
  if (!query.empty()) url += MyFormatQueryArgs(query);
  m_strCurrentUrl = url;
  if (netGetNetworkSta() != kNetworkAvailable) return BS_LIST_NO_NETWORK;

  switch (MyMakeReadyForDownload(url)) {
    case LIST_STATE_DOWNLOADING: return BS_LIST_DOWNLOADING;
    case LIST_STATE_READY:
      return MyExecDownload(url, false) == LIST_STATE_DOWNLOADING ? BS_LIST_DOWNLOADING
                                                                  : BS_LIST_FAILED;
    case LIST_STATE_LOADED:
      return MyCopyList(list, MyFindItemData(url)) ? BS_LIST_OK : BS_LIST_INVALID;
    default: return BS_LIST_INVALID;
  }
}

bool CBSCallLogModel::MyCopyList(CallLogSimpleListData* list, const ListItemData* item) {
  if (list == nullptr || item == nullptr || item->state != LIST_STATE_LOADED) return false;
  std::list<CallLogSimpleData> page;
  const int total = static_cast<int>(item->records.size());
  const auto rows = RequestedRows(*list, total);
  if (!rows) return false;
  for (int row = std::max(rows->from, 0); row < std::min(rows->to, total); ++row) {
    const CallLogDetailData& record = *item->records[static_cast<std::size_t>(row)];
    CallLogSimpleData& shown = page.emplace_back();
    shown.display_name = record.display_name.empty() ? record.number : record.display_name;
    shown.time_text = record.time_text;
  }
  list->items.splice(list->items.end(), page);
  list->total = total;
  return true;
}

bool CBSCallLogModel::GetLogDetailByIndex(CallLogDetailData* detail, int index) {
  if (detail == nullptr || index < 0) return false;
  const ListItemData* const item = MyFindItemData(m_strCurrentUrl);
  if (item == nullptr || static_cast<std::size_t>(index) >= item->records.size()) return false;
  CallLogDetailData whole = *item->records[static_cast<std::size_t>(index)];
  *detail = std::move(whole);
  return true;
}

bool CBSCallLogModel::MyClearMap() {
  m_mapListData.clear();
  return true;
}

bool CBSCallLogModel::MyRemoveListByUrl(const std::string& url) {
  return m_mapListData.erase(url) > 0;
}

}  // namespace NS_CALLLOG

// Texts, status ids and events of new calls. Who counts them is the model.
#include "CallLog/NewCallStatus.h"

#include "CallLog/Failure.h"
#include "platform/Backlight.h"
#include "platform/CommonAPI.h"
#include "platform/CommonUnits.h"
#include "platform/EtlTrace.h"
#include "platform/LedLamp.h"

namespace NS_CALLLOG {
namespace {

constexpr int kMissedStatus = 12;
constexpr int kForwardedStatus = 15;

}  // namespace

void PublishMissedCount(int count) {
  ETL_TraceHelper::etlTrace(3, "Current missed call count: %d", count);
  IgnoreFailure([count] {
    if (count > 0) {
      CommonUnits_AddStatus(kMissedStatus, CommonAPI_FormatString("%d Missed", count));
    } else {
      CommonUnits_RemoveStatus(kMissedStatus);
    }
  });
  backlight_RegisterEvent(BACK_LIGHT_MISSED_CALL, count > 0);
  ledlamp::ledlamp_PostEvent(ledlamp::LAMP_EVENT_MISSED_CALL, count > 0);
}

void PublishForwardedCount(int count) {
  ETL_TraceHelper::etlTrace(3, "Current forwarded call count: %d", count);
  IgnoreFailure([count] {
    if (count > 0) {
      CommonUnits_AddStatus(kForwardedStatus, CommonAPI_FormatString("%d Forwarded", count));
    } else {
      CommonUnits_RemoveStatus(kForwardedStatus);
    }
  });
  ledlamp::ledlamp_PostEvent(ledlamp::LAMP_EVENT_FORWARDED_CALL, count > 0);
}

}  // namespace NS_CALLLOG

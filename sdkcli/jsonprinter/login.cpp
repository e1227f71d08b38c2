#include "jsonprinter.h"

#include <ctime>

#include "recordtext.h"

void printAccountingResult(KelvarisSDK_AccountingResult const& result) {
    char periodEnd[80] = "";
    std::strftime(periodEnd, sizeof(periodEnd), "%Y-%m-%d", &result.periodEndDate);

    Json::Value document;
    document["email"] = recordText(result, result.email);
    document["isAutoAccount"] = result.isAutoAccount;
    document["bytesAvailable"] = Json::Int64(result.bytesAvail);
    document["bytesUsed"] = Json::Int64(result.bytesUsed);
    document["isTeam"] = result.isTeam;
    document["minutesAvailable"] = result.minutesAvail;
    document["minutesUsed"] = result.minutesUsed;
    document["paymentType"] = KelvarisSDK_AccountPaymentType_toString(result.paymentType);
    document["dataPeriodEnd"] = periodEnd;
    writeDocument(document);
}

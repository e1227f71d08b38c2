#include "jsonprinter.h"

#include "recordtext.h"

void printDirectorySettingsResult(KelvarisSDK_DirectorySettingsResult const& result) {
    Json::Value document;
    document["domain"] = recordText(result, result.domain);
    document["enableEsni"] = result.enableEsni;
    document["gatewayUri"] = recordText(result, result.gatewayUri);
    writeDocument(document);
}

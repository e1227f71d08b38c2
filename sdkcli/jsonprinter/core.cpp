#include "jsonprinter.h"

#include <memory>
#include <new>
#include <sstream>

#include "productStringReplacement.h"
#include "recordtext.h"

namespace {

char const* reportTag = nullptr; // null: documents are written as they are

// This is toStyledString(), which takes the text as complete when its stream has run out of memory.
std::string styledText(Json::Value const& document) {
    std::ostringstream text;
    std::unique_ptr<Json::StreamWriter> const writer(Json::StreamWriterBuilder().newStreamWriter());
    writer->write(document, &text);
    text << '\n';
    if (!text) {
        throw std::bad_alloc();
    }
    return std::move(text).str();
}

} // namespace

ReportFrame::ReportFrame(char const* tag) {
    reportTag = tag;
}

ReportFrame::~ReportFrame() {
    reportTag = nullptr;
}

void writeDocument(Json::Value const& document, std::FILE* stream) {
    writeText(styledText(document), stream);
}

void writeText(std::string const& text, std::FILE* stream) {
    if (reportTag == nullptr) {
        std::fputs(text.c_str(), stream);
        std::fflush(stream);
        return;
    }
    std::string const start = std::string("[\"") + reportTag + "\",\n";
    std::fputs((start + text).c_str(), stream);
    std::fflush(stream);
    std::fputs("]\n\n", stream);
}

void printError(KelvarisSDK_BaseResult const& result) {
    Json::Value document;
    document["errorCode"] = result.errorCode;
    document["errorType"] =
        KelvarisSDK_ErrorType_toString(static_cast<KelvarisSDK_ErrorType>(result.errorCode));
    document["errorMessage"] = replaceProductString(recordText(result, result.errorMessage).c_str());
    writeDocument(document, stderr);
}

void printStateResult(KelvarisSDK_StateResult const& result) {
    Json::Value document;
    document["state"] = KelvarisSDK_State_toString(result.state);
    writeDocument(document);
}

void printVersionResult(KelvarisSDK_VersionResult const& result) {
    Json::Value document;
    document["maj"] = result.maj;
    document["min"] = result.min;
    document["bug"] = result.bug;
    document["build"] = result.build;
    writeDocument(document);
}

Json::Value portsDocument(KelvarisSDK_ProtocolPortPair const* ports, unsigned count) {
    Json::Value document(Json::arrayValue);
    for (unsigned i = 0; i < count; ++i) {
        Json::Value& pair = document.append(Json::Value());
        pair["protocol"] = KelvarisSDK_PortProtocol_toString(ports[i].protocol);
        pair["port"] = ports[i].port;
    }
    return document;
}

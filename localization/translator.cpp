#include "localization/translator.h"

#include <json/json.h>

#include <algorithm>
#include <memory>

namespace kelvaris::localization {

std::mutex translationTablesMutex;
std::vector<const TranslationTable*> translationTables;
std::string baseLanguage = "en";
std::string usedLanguage = "en";

namespace {

const std::string* findText(const TranslationTable& table, const std::string& language,
                            const std::string& key) {
    const auto texts = table.find(language);
    if (texts == table.end()) {
        return nullptr;
    }
    const auto text = texts->second.find(key);
    return text == texts->second.end() ? nullptr : &text->second;
}

} // namespace

void registerTranslationTable(const TranslationTable* table) {
    const std::lock_guard lock(translationTablesMutex);
    if (std::find(translationTables.begin(), translationTables.end(), table) == translationTables.end()) {
        translationTables.push_back(table);
    }
}

std::string translate(const std::string& s) {
    if (!s.starts_with("{{") || s.find("}}") == std::string::npos) {
        return s;
    }
    return lookupString(s);
}

std::string lookupString(const std::string& s) {
    const std::lock_guard lock(translationTablesMutex);
    const std::string key = s.substr(2, s.find("}}", 2) - 2);
    for (const TranslationTable* table : translationTables) {
        const std::string* text = findText(*table, usedLanguage, key);
        if (text == nullptr) {
            text = findText(*table, baseLanguage, key);
        }
        if (text != nullptr) {
            return variableReplacements(s, *text);
        }
    }
    return s;
}

std::string variableReplacements(const std::string& s, std::string text) {
    const std::size_t bar = s.find('|');
    const std::size_t braces = s.find("}}");
    if (bar == std::string::npos || braces == std::string::npos || bar != braces + 2) {
        return text;
    }
    const std::unique_ptr<Json::CharReader> reader(Json::CharReaderBuilder().newCharReader());
    std::string replaced = text;
    try {
        Json::Value arguments;
        if (!reader->parse(s.data() + bar + 1, s.data() + s.size(), &arguments, nullptr)) {
            return text;
        }
        for (const std::string& name : arguments.getMemberNames()) {
            const std::string placeholder = "{" + name + "}";
            if (replaced.find(placeholder) != std::string::npos) {
                ReplaceAll(replaced, placeholder, arguments[name].asString());
            }
        }
    } catch (const Json::Exception&) {
        return text; // too deeply nested, no object, or an argument that is an array or an object
    }
    return replaced;
}

void ReplaceAll(std::string& str, const std::string& from, const std::string& to) {
    // An empty pattern matches everywhere: it has to move on by a byte to come to an end.
    const std::size_t step = to.size() + (from.empty() ? 1 : 0);
    for (std::size_t pos = 0; (pos = str.find(from, pos)) != std::string::npos; pos += step) {
        str.replace(pos, from.size(), to);
    }
}

} // namespace kelvaris::localization

#include "translator.h"

#include <json/json.h>

#include <algorithm>
#include <memory>
#include <pthread.h>

namespace kelvaris::localization {

namespace {

NeverDestroyed<std::vector<TranslationTable const*>> tables;
NeverDestroyed<std::string> base{"en"};
NeverDestroyed<std::string> used{"en"};

} // namespace

std::mutex translationTablesMutex;
std::vector<TranslationTable const*>& translationTables = tables.object;
std::string& baseLanguage = base.object;
std::string& usedLanguage = used.object;

namespace {

void lockTables() {
    translationTablesMutex.lock();
}

void unlockTables() {
    translationTablesMutex.unlock();
}

// A process may be forked off while another thread looks something up, and the child needs a mutex that is free.
[[maybe_unused]] int const forkHandlers = pthread_atfork(lockTables, unlockTables, unlockTables);

std::string const* findText(TranslationTable const& table, std::string const& language,
                            std::string const& key) {
    auto const texts = table.find(language);
    if (texts == table.end()) {
        return nullptr;
    }
    auto const text = texts->second.find(key);
    return text == texts->second.end() ? nullptr : &text->second;
}

} // namespace

void registerTranslationTable(TranslationTable const* table) {
    std::lock_guard const lock(translationTablesMutex);
    if (std::find(translationTables.begin(), translationTables.end(), table) == translationTables.end()) {
        translationTables.push_back(table);
    }
}

std::string translate(std::string const& s) {
    if (!s.starts_with("{{") || s.find("}}") == std::string::npos) {
        return s;
    }
    return lookupString(s);
}

std::string lookupString(std::string const& s) {
    std::lock_guard const lock(translationTablesMutex);
    std::string const key = s.substr(2, s.find("}}", 2) - 2);
    for (TranslationTable const* table : translationTables) {
        std::string const* text = findText(*table, usedLanguage, key);
        if (text == nullptr) {
            text = findText(*table, baseLanguage, key);
        }
        if (text != nullptr) {
            return variableReplacements(s, *text);
        }
    }
    return s;
}

std::string variableReplacements(std::string const& s, std::string text) {
    std::size_t const bar = s.find('|');
    std::size_t const braces = s.find("}}");
    if (bar == std::string::npos || braces == std::string::npos || bar != braces + 2) {
        return text;
    }
    std::unique_ptr<Json::CharReader> const reader(Json::CharReaderBuilder().newCharReader());
    std::string replaced = text;
    try {
        Json::Value arguments;
        if (!reader->parse(s.data() + bar + 1, s.data() + s.size(), &arguments, nullptr)) {
            return text;
        }
        for (std::string const& name : arguments.getMemberNames()) {
            std::string const placeholder = "{" + name + "}";
            if (replaced.find(placeholder) != std::string::npos) {
                ReplaceAll(replaced, placeholder, arguments[name].asString());
            }
        }
    } catch (Json::Exception const&) {
        return text; // too deeply nested, no object, or an argument that is an array or an object
    }
    return replaced;
}

void ReplaceAll(std::string& str, std::string const& from, std::string const& to) {
    // An empty pattern matches everywhere: it has to move on by a byte to come to an end.
    std::size_t const step = to.size() + (from.empty() ? 1 : 0);
    for (std::size_t pos = 0; (pos = str.find(from, pos)) != std::string::npos; pos += step) {
        str.replace(pos, from.size(), to);
    }
}

} // namespace kelvaris::localization

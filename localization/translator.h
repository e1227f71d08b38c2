// A small keyed text service: registered tables hold texts by language and key, translate() turns a template
// "{{KEY}}" into the text of that key. Texts, keys and templates are UTF-8 and are only looked at as bytes.

#pragma once

#include <cstddef>
#include <map>
#include <mutex>
#include <new>
#include <string>
#include <utility>
#include <vector>

namespace kelvaris::localization {

// An object with static storage that a thread may still use while the process ends: its destructor doesn't run.
template <class T> class NeverDestroyed {
public:
    template <class... Arguments>
    explicit NeverDestroyed(Arguments&&... arguments)
        : object(*::new (&storage) T(std::forward<Arguments>(arguments)...)) {}
    NeverDestroyed(NeverDestroyed const&) = delete;
    NeverDestroyed& operator=(NeverDestroyed const&) = delete;

private:
    alignas(T) std::byte storage[sizeof(T)];

public:
    T& object;
};

// From language code to key to text.
using TranslationTable = std::map<std::string, std::map<std::string, std::string>>;

// Guards translationTables and is held during every look-up. Whoever changes a registered table holds it.
extern std::mutex translationTablesMutex;

// The registered tables, not owned, in order of registration.
extern std::vector<TranslationTable const*>& translationTables;

// The language asked for first, and the one of last resort within a table. A program that wants another
// language assigns it before the first look-up: nothing guards a later change.
extern std::string& baseLanguage;
extern std::string& usedLanguage;

// Appends a table, which has to outlive every look-up. One that is registered already stays in its place.
void registerTranslationTable(TranslationTable const* table);

// The text for a template "{{KEY}}", or the argument itself when it is no template or no table has the key.
// Behind the braces a template can carry named arguments, "{{KEY}}|{"name": "Ann"}", for the placeholders
// ("{name}") in the text. May be called on any thread.
std::string translate(std::string const& s);

// translate() for an argument that is known to begin with "{{". An earlier table wins over a later one, even
// when it has the key in the base language only.
std::string lookupString(std::string const& s);

// Puts the arguments of the template s into text, one argument after the other. When they can't be read, or
// one that has a placeholder doesn't convert to text, the text keeps all its placeholders.
std::string variableReplacements(std::string const& s, std::string text);

// Replaces every occurrence of from in place; what was inserted is not searched again.
void ReplaceAll(std::string& str, std::string const& from, std::string const& to);

} // namespace kelvaris::localization

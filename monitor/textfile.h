#pragma once

#include <string>
#include <string_view>

namespace monitor {

// A file whose content is replaced as a whole: a reader finds the old content or the new one.
class TextFile {
public:
    // Throws when the name is that of something else than a file.
    explicit TextFile(std::string name);

    // Throws std::system_error, and the file stays as it was.
    void replace(std::string_view content) const;
    void remove() const;

private:
    std::string const name;
    std::string const
        aside; // where the new content is written first; its name doesn't end as the file's does
};

} // namespace monitor

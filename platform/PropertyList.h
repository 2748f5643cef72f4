#pragma once
#include <string>

namespace Platform {

// A settings file's dictionary of texts, over the system's property-list library. Files are
// read in the XML or the binary form and written as XML.
class PropertyList {
public:
    PropertyList();   // an empty dictionary
    ~PropertyList();
    PropertyList(PropertyList&& other) noexcept;
    PropertyList& operator=(PropertyList&& other) noexcept;
    PropertyList(const PropertyList&) = delete;
    PropertyList& operator=(const PropertyList&) = delete;

    // Replaces this dictionary by the file's. False, with this one left as it was, when the file
    // is missing, unreadable, larger than kLargestFile, not a property list, or its root is no
    // dictionary.
    bool Read(const std::string& path);
    // The value of `key` when there is one and it is a text.
    bool GetString(const char* key, std::string* value) const;
    void SetString(const char* key, const std::string& value);
    // Writes the dictionary as XML in place of the file in one rename, so that no reader ever
    // sees half a file.
    bool Write(const std::string& path) const;

    static const size_t kLargestFile = 1 << 20;

private:
    void* m_dictionary;   // the library's node
};

} // namespace Platform

#include "PropertyList.h"

#include <plist/plist.h>

#include <utility>

#include "WholeFile.h"

namespace Platform {

PropertyList::PropertyList() : m_dictionary(plist_new_dict()) {}

PropertyList::~PropertyList()
{
    if (m_dictionary != nullptr)
        plist_free(static_cast<plist_t>(m_dictionary));
}

PropertyList::PropertyList(PropertyList&& other) noexcept : m_dictionary(other.m_dictionary)
{
    other.m_dictionary = nullptr;
}

PropertyList& PropertyList::operator=(PropertyList&& other) noexcept
{
    std::swap(m_dictionary, other.m_dictionary);
    return *this;
}

bool PropertyList::Read(const std::string& path)
{
    std::string contents;
    if (!ReadWholeFile(path.c_str(), kLargestFile, &contents) || contents.empty())
        return false;
    plist_t root = nullptr;
    plist_from_memory(contents.data(), static_cast<uint32_t>(contents.size()), &root);
    if (root == nullptr)
        return false;
    if (plist_get_node_type(root) != PLIST_DICT) {
        plist_free(root);
        return false;
    }
    if (m_dictionary != nullptr)
        plist_free(static_cast<plist_t>(m_dictionary));
    m_dictionary = root;
    return true;
}

bool PropertyList::GetString(const char* key, std::string* value) const
{
    if (m_dictionary == nullptr || key == nullptr || value == nullptr)
        return false;
    plist_t item = plist_dict_get_item(static_cast<plist_t>(m_dictionary), key);
    if (item == nullptr || plist_get_node_type(item) != PLIST_STRING)
        return false;
    // The library's copying getter asserts on a text with a zero byte inside; this one doesn't.
    uint64_t length = 0;
    const char* text = plist_get_string_ptr(item, &length);
    if (text == nullptr)
        return false;
    value->assign(text, length);
    return true;
}

void PropertyList::SetString(const char* key, const std::string& value)
{
    if (m_dictionary == nullptr)
        m_dictionary = plist_new_dict();
    if (key != nullptr)
        plist_dict_set_item(static_cast<plist_t>(m_dictionary), key, plist_new_string(value.c_str()));
}

bool PropertyList::Write(const std::string& path) const
{
    if (m_dictionary == nullptr)
        return false;
    char* xml = nullptr;
    uint32_t length = 0;
    plist_to_xml(static_cast<plist_t>(m_dictionary), &xml, &length);
    if (xml == nullptr)
        return false;
    const bool written = ReplaceWholeFile(path.c_str(), [&](FILE* file) {
        return std::fwrite(xml, 1, length, file) == length;
    });
    plist_to_xml_free(xml);
    return written;
}

} // namespace Platform

#include "RegistryHelper.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cctype>
#include <cstdio>
#include <cstring>
#include <string>

#include "../platform/PreferencesFolder.h"
#include "../platform/PropertyList.h"

namespace RegistryHelper {

namespace {

const size_t kSectionBuffer = 260;
const size_t kLongestFileName = 258;
const int kTextReadBuffer = 512;
const size_t kPathBuffer = 1024;

std::string DomainFolder(short domain, bool create)
{
    if (domain == kUserDomain)
        return Platform::PreferencesFolder(Platform::PreferencesDomain::kUser, create);
    if (domain == kLocalDomain)
        return Platform::PreferencesFolder(Platform::PreferencesDomain::kLocal, create);
    return std::string();
}

} // namespace

void Normalize(char* out, const char* in)
{
    if (out == nullptr || in == nullptr)
        return;
    size_t written = 0;
    for (; *in != '\0'; ++in) {
        const unsigned char byte = static_cast<unsigned char>(*in);
        if (byte >= 0x80)
            continue;
        if (std::isalpha(byte))
            out[written++] = static_cast<char>(std::tolower(byte));
        else if (std::isdigit(byte) || byte == '.' || byte == '_' || byte == '-')
            out[written++] = static_cast<char>(byte);
        else
            continue;
        out[written] = '\0';
    }
}

TSString FileNameOfSection(const char* section)
{
    char normalized[kSectionBuffer] = {};
    if (section != nullptr && std::strlen(section) < kSectionBuffer)
        Normalize(normalized, section);
    else if (section != nullptr)
        Normalize(normalized, std::string(section, kSectionBuffer - 1).c_str());
    char fileName[kLongestFileName + 1];
    std::snprintf(fileName, sizeof fileName, "com.tessarel.%s.plist", normalized);
    return TSString(fileName);
}

bool GetRegistryKeyAtDomain(short domain, const TSString& fileName, const TSString& key, TSString* value)
{
    if (fileName.IsEmpty() || key.IsEmpty() || value == nullptr)
        return false;
    const std::string folder = DomainFolder(domain, false);
    if (folder.empty())
        return false;
    Platform::PropertyList dictionary;
    std::string text;
    if (!dictionary.Read(folder + fileName.ConstData()) || !dictionary.GetString(key.ConstData(), &text))
        return false;
    value->FromCFString(&text);
    return true;
}

bool GetRegistryKey(const char* section, const char* key, char* buffer, int size)
{
    if (section == nullptr || key == nullptr)
        return false;
    const TSString fileName = FileNameOfSection(section);
    const TSString keyName(key);
    TSString value;
    if (!GetRegistryKeyAtDomain(kUserDomain, fileName, keyName, &value) &&
        !GetRegistryKeyAtDomain(kLocalDomain, fileName, keyName, &value) &&
        !GetRegistryKeyAtDomain(kLocalDomain, TSString("Network/") + fileName, keyName, &value))
        return false;
    if (buffer == nullptr || size <= 0 || value.Size() >= static_cast<uint64_t>(size))
        return false;
    std::memcpy(buffer, value.ConstData(), value.Size() + 1);
    return true;
}

TSString GetRegistryKey(const TSString& section, const TSString& key)
{
    char buffer[kTextReadBuffer] = {};
    if (!GetRegistryKey(section.ConstData(), key.ConstData(), buffer, kTextReadBuffer - 1))
        return TSString();
    return TSString(buffer);
}

bool SetRegistryKey(const char* section, const char* key, const char* value, short domain)
{
    if (section == nullptr || key == nullptr || value == nullptr)
        return false;
    const std::string fileName = FileNameOfSection(section).ConstData();
    // A missing or corrupt file starts from an empty dictionary, so a corrupt one is replaced.
    const std::string existingFolder = DomainFolder(domain, false);
    Platform::PropertyList dictionary;
    if (!existingFolder.empty())
        dictionary.Read(existingFolder + fileName);
    dictionary.SetString(key, value);
    const std::string folder = DomainFolder(domain, true);
    if (folder.empty())
        return false;
    const std::string path = folder + fileName;
    const bool written = dictionary.Write(path);
    FixPermissions(path.c_str());
    return written;
}

bool SetRegistryKey(const TSString& section, const TSString& key, const TSString& value)
{
    return SetRegistryKey(section.ConstData(), key.ConstData(), value.ConstData(), kUserDomain);
}

void FixPermissions(const char* file)
{
    if (file == nullptr || std::strlen(file) >= kPathBuffer)
        return;
    char folder[kPathBuffer];
    std::strcpy(folder, file);
    char* slash = std::strrchr(folder, '/');
    if (slash == nullptr)
        return;
    *(slash == folder ? slash + 1 : slash) = '\0';
    struct stat info;
    if (stat(folder, &info) != 0)
        return;
    chown(file, info.st_uid, info.st_gid);
    chmod(file, info.st_mode & 07777);
}

} // namespace RegistryHelper

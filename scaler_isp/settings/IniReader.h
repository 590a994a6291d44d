#ifndef SCALER_ISP_SETTINGS_INI_READER_H
#define SCALER_ISP_SETTINGS_INI_READER_H
#include <string>
#include <string_view>
class IniReader {
  public:
    explicit IniReader(const std::string &path);
    std::wstring String(std::wstring_view section, std::wstring_view key) const;
    int Number(std::wstring_view section, std::wstring_view key, int defaultValue) const;
  private:
    std::string m_bytes;
};
#endif

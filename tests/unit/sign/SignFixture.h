#ifndef SCALER_ISP_TESTS_UNIT_SIGN_SIGN_FIXTURE_H
#define SCALER_ISP_TESTS_UNIT_SIGN_SIGN_FIXTURE_H

#include <string>

#include <gmock/gmock.h>

#include "scaler_isp/sign/CCpDigitalSignArgsHandle.h"
#include "support/CapturedOutput.h"
#include "support/TempFolder.h"

constexpr auto kNone = static_cast<ENUM_CP_DIGITAL_SIGNATURE_ACTION_TYPE>(0);
constexpr auto kSign = static_cast<ENUM_CP_DIGITAL_SIGNATURE_ACTION_TYPE>(1);
constexpr auto kVerify = static_cast<ENUM_CP_DIGITAL_SIGNATURE_ACTION_TYPE>(2);

/// A path field of the record between guard bytes.
class Field {
  public:
    explicit Field(const std::string &text = "") {
        std::fill(std::begin(m_bytes), std::end(m_bytes), '#');
        std::fill(Data(), Data() + 260, '\0');
        std::copy_n(text.begin(), std::min<std::size_t>(text.size(), 260), Data());
    }
    char *Data() {
        return m_bytes + 8;
    }
    std::string Text() const {
        std::string text(m_bytes + 8, 260);
        return text.substr(0, text.find('\0'));
    }
    /// Nothing behind the text but zeroes, and the guards are whole.
    bool IsClean() const {
        const std::string all(m_bytes, sizeof m_bytes);
        return all.substr(0, 8) == "########" && all.substr(268) == "########" &&
               all.substr(8 + Text().size(), 260 - Text().size()).find_first_not_of('\0') ==
                   std::string::npos;
    }

  private:
    char m_bytes[276];
};

class SignTest : public testing::Test {
  protected:
    SignTest() {
        handle.SetCurrentDir(folder.Path());
        folder.Write("fw.bin", "firmware");
        folder.Write("k.pem", "key");
    }
    template <class Function> void Accepts(Function &&function, const char *file, int line) {
        testing::ScopedTrace trace(file, line, "");
        int result = -1;
        EXPECT_EQ(OutputOf([&] { result = function(); }), "");
        EXPECT_EQ(result, 1);
    }
    template <class Function>
    void Refuses(Function &&function, const std::string &message, const char *file, int line) {
        testing::ScopedTrace trace(file, line, "");
        int result = -1;
        EXPECT_EQ(OutputOf([&] { result = function(); }), message);
        EXPECT_EQ(result, 0);
    }
    std::string Full(const std::string &name) const {
        return folder.Path(name);
    }

    TempFolder folder;
    CCpDigitalSignArgsHandle handle;
};

#define EXPECT_PASSES(CALL) Accepts([&] { return CALL; }, __FILE__, __LINE__)
#define EXPECT_REFUSES(CALL, MESSAGE) Refuses([&] { return CALL; }, MESSAGE, __FILE__, __LINE__)

#endif

#include "VirtualPlugin.h"

#include <cstring>
#include <stdexcept>

#include <dlfcn.h>

namespace {

VirtualIsp *g_current = nullptr;

void OnProgress(int percent) {
    if (g_current->onProgress != nullptr) {
        g_current->onProgress(percent);
    }
    g_current->progress.push_back(percent);
}

void OnMessage(wchar_t *text) {
    g_current->messages.emplace_back(text);
}

void CopyWide(wchar_t *field, const std::string &ascii) {
    for (std::size_t i = 0; i < ascii.size() && i < 260; ++i) {
        field[i] = static_cast<wchar_t>(static_cast<unsigned char>(ascii[i]));
    }
}

} // namespace

OpenLibrary::OpenLibrary(const std::string &path) : m_handle(dlopen(path.c_str(), RTLD_NOW)) {
    if (m_handle == nullptr) {
        throw std::runtime_error(dlerror());
    }
}

OpenLibrary::~OpenLibrary() {
    dlclose(m_handle);
}

void *OpenLibrary::Symbol(const char *name) const {
    void *symbol = dlsym(m_handle, name);
    if (symbol == nullptr) {
        throw std::runtime_error(std::string("no symbol ") + name);
    }
    return symbol;
}

Command::Command()
    : m_memory(new std::uint64_t[546704 / 8]()),
      m_setting(reinterpret_cast<Setting *>(m_memory.get())) {
    m_setting->enumVersionLocationType = ENUM_VERSION_LOCATION_TYPE(1);
    m_setting->enumMergeFWGeneration = 2;
    m_setting->nSlaveAddressState = -1;
    m_setting->ucSlaveAddress = 0x94;
    m_setting->stI2CWrite.ucI2CSlaveAddr = 0xFF;
    m_setting->stI2CWrite.ucI2CSubAddr = 0xFF;
    m_setting->stI2CWrite.ucI2CDataLen = 1;
    std::memset(m_setting->stI2CWrite.ucI2CData, 0xFF, 256);
    std::memset(m_setting->stFlagSetting.ucFlagData, 0xFF, 1220);
}

Command &Command::Banks(std::uint32_t bank, const std::string &path, std::uint32_t count,
                        std::uint32_t fileBank) {
    for (std::uint32_t i = 0; i < count; ++i) {
        auto &map = m_setting->stMapFw;
        map.ulTargetBank[map.ulFwCount] = bank + i;
        map.stFwBank[map.ulFwCount].ulFileBank = fileBank + i;
        CopyWide(map.stFwBank[map.ulFwCount].wszFwPath, path);
        ++map.ulFwCount;
    }
    return *this;
}

VirtualIsp::VirtualIsp()
    : device("SCALER_ISP_VIRTUAL_DEVICE", folder.Path("device")), plugin(VIRTUAL_ISP_FILE) {
    g_current = this;
    plugin.Get<decltype(SetUIFunction)>("SetUIFunction")(OnProgress, OnMessage, nullptr);
}

VirtualIsp::~VirtualIsp() {
    g_current = nullptr;
}

int VirtualIsp::Run(const char *function, Command &command) {
    progress.clear();
    messages.clear();
    return plugin.Get<int(Setting *)>(function)(command.Get());
}

std::string VirtualIsp::Journal() const {
    return folder.Read("device/journal.txt");
}

std::string VirtualIsp::Dump(std::size_t address, std::size_t length) {
    Command command;
    command->stDumpFlash.ulDumpAddr = static_cast<std::uint32_t>(address);
    command->stDumpFlash.ulDumpLen = static_cast<std::uint32_t>(length);
    CopyWide(command->stDumpFlash.wszDumpFile, folder.Path("dump.bin"));
    if (Run("DumpFlash", command) != 0) {
        throw std::runtime_error("DumpFlash failed");
    }
    return folder.Read("dump.bin");
}

void VirtualIsp::SetFaults(const std::string &text) {
    folder.Write("device/faults.txt", text);
}

std::string Firmware(std::size_t bytes, std::size_t seed) {
    std::string text(bytes, '\0');
    for (std::size_t i = 0; i < bytes; ++i) {
        text[i] = static_cast<char>((i * 7 + i / 65536 * 31 + seed * 13) % 251);
    }
    return text;
}

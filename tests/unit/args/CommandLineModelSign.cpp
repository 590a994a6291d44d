#include "CommandLineModelParts.h"

namespace model {

namespace {

const char *const kPrefix = "Digital signature: ";

/// Given, existing, made full.
void CheckFile(const World &world, std::string &field, const std::string &what, Outcome &o) {
    if (field.empty()) {
        Refuse(o, kPrefix + what + " should not be empty!\n");
    }
    const std::string path = FullPath(world, field);
    if (!Exists(world, path)) {
        Refuse(o, kPrefix + what + " is not exist! " + path + "\n");
    }
    field = path;
}

void CheckFirmwareAndSignature(const World &world, bool firmwareMayBeMissing, Outcome &o) {
    const bool sign = o.number["signAction"] == 1;
    if (sign && o.number["signSignType"] == 1 && o.number["signSwMode"] == 1) {
        Refuse(o, "Digital signature: Lenovo digital signature can not support sign function!\n");
    }
    if (!sign && o.number["signSignType"] == 2) {
        Refuse(o, "Digital signature: Hw digital signature can not support verify function!\n");
    }
    const std::string path = FullPath(world, o.fw);
    if (!Exists(world, path) && !firmwareMayBeMissing) {
        Refuse(o, "Digital signature: fw file is not exist! " + path + "\n");
    }
    o.fw = path;
    if (sign) {
        o.signature = o.signature.empty() ? path + ".sig" : FullPath(world, o.signature);
        return;
    }
    if (o.signature.empty()) {
        Refuse(o, "Digital signature: Signature file is missing!\n");
    }
    CheckFile(world, o.signature, "Signature file", o);
}

void CheckKeys(const World &world, Outcome &o) {
    const bool sign = o.number["signAction"] == 1;
    if (o.number["signSignType"] == 2) {
        if (!o.signKey.empty()) {
            CheckFile(world, o.signKey, "Vxm hw sign key file", o);
        }
        CheckFile(world, o.nextKey, "Vxm hw next verify key file", o);
        return;
    }
    switch (o.number["signSwMode"]) {
    case 1:
        CheckFile(world, o.verifyKey, "Lenovo verify key file", o);
        break;
    case 2: {
        long long value = 0;
        const std::string shown = " --keypair " + o.keyPairText;
        if (!IsNumber(o.keyPairText, value)) {
            Refuse(o, kPrefix + ("Vxm internal key pair value is illegal!" + shown + " \n"));
        }
        if (value < 0 || value > 4) {
            Refuse(o, kPrefix + ("Vxm Key Pair out if range!" + shown + "\n"));
        }
        o.number["keyPair"] = value;
        break;
    }
    case 3:
        if (sign) {
            CheckFile(world, o.signKey, "Vxm external sign key file", o);
        } else {
            CheckFile(world, o.verifyKey, "Vxm external verify key file", o);
        }
        break;
    case 4:
        CheckFile(world, o.nextKey, "Vxm external next verify key file", o);
        if (sign) {
            CheckFile(world, o.signKey, "Vxm external sign key file", o);
        }
        break;
    default:
        break;
    }
}

void Mode(const Raw &raw, const std::string &field, Outcome &o) {
    const auto found = raw.text.find("dsmode");
    const std::string text = found == raw.text.end() ? "" : found->second;
    if (text.empty()) {
        return;
    }
    long long value = 0;
    if (!IsNumber(text, value)) {
        Refuse(o,
               "Parameter illegal! --dsmode " + text + " \nDigital signature mode is illegal!\n");
    }
    if (value < 1 || value > 4) {
        Refuse(o, "Parameter out of range! --dsmode " + text +
                      " \nDigital signature mode is illegal!\n");
    }
    o.number[field] = value;
}

} // namespace

bool JudgeSignature(const World &world, const Raw &raw, Outcome &o) {
    if (raw.B == 3) {
        Refuse(o, "Digital signature type is undefined or more than one type!\n");
    }
    const bool hardware = raw.B == 2;
    o.number["signType"] = o.number["signSignType"] = raw.B;
    Mode(raw, hardware ? "signHwMode" : "signSwMode", o);
    o.number["swMode"] = o.number["signSwMode"];
    if (raw.firmware.empty() && !(hardware && o.number["signHwMode"] == 1)) {
        Refuse(o, "Program fw path is undefined!\n");
    }
    const auto text = [&](const char *name) {
        const auto found = raw.text.find(name);
        return found == raw.text.end() ? std::string() : found->second.substr(0, 260);
    };
    o.bootPath = text("boot");
    o.fw = raw.firmware.substr(0, 260);
    o.signature = text("signfile");
    o.keyPairText = text("keypair");
    o.verifyKey = text("vkfile");
    o.signKey = text("skfile");
    o.subCert = text("subcert");
    o.nextKey = text("nextvkfile");
    const long long action = o.number["action"];
    if (!(action == 1 || action == 2 || (action >= 4 && action <= 7))) {
        Refuse(o, "Digital signature type should not be defined only when program fw!\n");
    }
    if (action <= 2) {
        o.number["signAction"] = action == 2 ? 1 : 2;
        CheckFirmwareAndSignature(world, hardware && o.number["signHwMode"] == 1, o);
        CheckKeys(world, o);
        return true;
    }
    if (hardware) {
        return false;
    }
    o.number["signAction"] = 2;
    if (o.number["ispMode"] == 2) {
        return false;
    }
    if (o.number["signSwMode"] == 4) {
        try {
            CheckFirmwareAndSignature(world, false, o);
        } catch (const Refused &) { // the message stays, the command goes on
        }
        return false;
    }
    CheckFirmwareAndSignature(world, false, o);
    CheckKeys(world, o);
    return false;
}

} // namespace model

#ifndef SCALER_ISP_TESTS_UNIT_ARGS_OPTION_ENGINE_MODEL_H
#define SCALER_ISP_TESTS_UNIT_ARGS_OPTION_ENGINE_MODEL_H

#include <string>
#include <vector>

/// One long option of the model; `flag` is null or where the value goes.
struct ModelOption {
    std::string name;
    int hasArg;
    int *flag;
    int val;
};

/// The scan of CpNxCmdLindParse once more, slow and step by step, on strings and positions.
/// Arguments are numbered by the place they had in the beginning, so that a moved one is
/// recognised.
class OptionEngineModel {
  public:
    OptionEngineModel(std::vector<ModelOption> options, std::string shorts,
                      std::vector<std::string> arguments);

    int Step(bool longOnly);

    const std::vector<int> &Order() const {
        return m_order;
    }
    /// The argument's text and where it comes from: "-" where there is none.
    std::string Argument() const;
    int Index() const {
        return m_index;
    }
    int UnknownChar() const {
        return m_unknown;
    }
    int LongIndex() const {
        return m_longIndex;
    }
    const std::string &Diagnostics() const {
        return m_diagnostics;
    }

  private:
    /// A place in an argument.
    struct Place {
        int argument = -1; ///< its original number; -1: none
        std::size_t position = 0;
    };

    const std::string &Element(int place) const {
        return m_arguments[static_cast<std::size_t>(m_order[static_cast<std::size_t>(place)])];
    }
    std::string TextAt(const Place &place) const;
    void Say(const std::string &text) {
        m_diagnostics += text;
    }
    bool IsShort(char letter) const {
        return m_shorts.find(letter) != std::string::npos;
    }
    int ShortStep();
    int LongStep(bool longOnly, const std::string &prefix);
    void Exchange();
    void SwapElements(int one, int other);

    std::vector<ModelOption> m_options;
    std::string m_shorts;
    std::vector<std::string> m_arguments;
    std::vector<int> m_order;
    bool m_started = false;
    bool m_printErrors = true;
    Place m_next;
    Place m_argument;
    int m_firstNonOption = 1;
    int m_lastNonOption = 1;
    int m_index = 1;
    int m_unknown = 63;
    int m_longIndex = -7;
    std::string m_diagnostics;
};

#endif

#ifndef SCALER_ISP_TESTS_UNIT_PLUGINS_LITTLE_MEMORY_H
#define SCALER_ISP_TESTS_UNIT_PLUGINS_LITTLE_MEMORY_H

/// While it lives, memory ends after this many objects. This program has its own operator new.
class LittleMemory {
  public:
    explicit LittleMemory(int objects);
    ~LittleMemory();
    LittleMemory(const LittleMemory &) = delete;
    LittleMemory &operator=(const LittleMemory &) = delete;
};

#endif

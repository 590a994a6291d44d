#include "chip.h"

#include <stdio.h>
#include <string.h>

static const char kFile[] = "chip.bin";
static FILE *chip;

int ChipOpen(void) {
    chip = fopen(kFile, "r+b");
    if (chip == NULL) {
        chip = fopen(kFile, "w+b");
    }
    return chip != NULL;
}

void ChipClose(void) {
    fclose(chip);
    chip = NULL;
}

int ChipWriteBank(uint32_t bank, const unsigned char *bytes) {
    return fseek(chip, (long)(bank * CHIP_BANK_BYTES), SEEK_SET) == 0 &&
           fwrite(bytes, 1, CHIP_BANK_BYTES, chip) == CHIP_BANK_BYTES && fflush(chip) == 0;
}

int ChipRead(uint32_t address, uint32_t count, unsigned char *bytes) {
    if (fseek(chip, (long)address, SEEK_SET) != 0) {
        return 0;
    }
    const size_t there = fread(bytes, 1, count, chip);
    /* Past the end of the file the flash is erased. */
    memset(bytes + there, 0xFF, count - there);
    return ferror(chip) == 0;
}

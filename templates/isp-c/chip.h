/* Access to the chip. chip.c plays a chip with the file chip.bin in the working directory; put your
 * bus access there instead. Every function returns 1 for success and 0 for failure. */

#ifndef CHIP_H
#define CHIP_H

#include <stdint.h>

#define CHIP_BANK_BYTES 65536u
#define CHIP_BANKS 256u

int ChipOpen(void);
void ChipClose(void);

/* Erases a bank, then writes CHIP_BANK_BYTES bytes. REQUIRES: bank < CHIP_BANKS. */
int ChipWriteBank(uint32_t bank, const unsigned char *bytes);

/* REQUIRES: address + count <= CHIP_BANKS * CHIP_BANK_BYTES. */
int ChipRead(uint32_t address, uint32_t count, unsigned char *bytes);

#endif

#ifndef SCALER_ISP_TESTS_BLACKBOX_RECORD_JOURNAL_H
#define SCALER_ISP_TESTS_BLACKBOX_RECORD_JOURNAL_H

#include <stdio.h>

#include "scaler_isp/abi/CommandSetting.h"
#include "scaler_isp/abi/DigitalSignArgs.h"

/* Every field of the record that differs from its default, in the order of its bytes. Walks the
 * field tables of the ABI by their offsets, so that no byte outside the padding can be forgotten; a
 * table with a gap is reported as LAYOUT-GAP. The target banks from ulFwCount on are not looked at.
 */
void journal_command_setting(FILE *file, const STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING *setting);
void journal_sign_args(FILE *file, const STRUCT_C_STYLE_CP_DIGITAL_SIGN_ARGS *args);

#endif

/* File encryption through the device's lockwrap tool. The caller's key goes
 * into the short-lived key file /var/vesk_crypt_key_file for the tool's run;
 * the cipher and the file format are the tool's own. One such operation at a
 * time on the device: the key file's path is fixed. */
#ifndef VESK_CRYPT_H
#define VESK_CRYPT_H

#include "vesk_defs.h"

VESK_BEGIN_DECLS

/* Encrypts input into output with key (0 to 64 characters; "" is a key too).
 * An old output is removed before the tool runs. keep_input 0 removes input
 * after a successful run. Returns 1 on success; 0 with a message for a null
 * file name, a null or too long key, a missing input or a failing tool. */
VESK_API int vesk_crypt_enc_file(const char *input, const char *key, const char *output, int keep_input);

/* Decrypts input into output; otherwise as vesk_crypt_enc_file. */
VESK_API int vesk_crypt_dec_file(const char *input, const char *key, const char *output, int keep_input);

VESK_END_DECLS

#endif

/* The public header compiles as strict C11 (this file is built with
   -std=c11 -pedantic -Werror) and its records have the sizes callers need. */
#include <stddef.h>
#include <stdio.h>

#include "zvpj.h"

_Static_assert(sizeof(ZvpiSize) == 8, "ZvpiSize is two 32-bit values");
_Static_assert(sizeof(ZvpiRect) == 16, "ZvpiRect is four 32-bit values");
_Static_assert(offsetof(ZvpLibraryVersion, targetCpu) == 16, "version record layout");

int main(void) {
  const ZvpLibraryVersion* v = zvpjGetLibVersion();
  ZvpiSize roi = {1, 1};
  Zvp8u s = 200;
  Zvp16s d = 0;
  if (v == NULL || v->major != 6 || v->minor != 1) return 1;
  if (zvpiSub128_JPEG_8u16s_C1R(&s, 1, &d, 2, roi) != zvpStatusOk || d != 72) return 2;
  printf("C11 caller: %s %s\n", v->name, v->version);
  return 0;
}

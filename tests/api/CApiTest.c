/* The public header compiled as C99 against the shared library: catches
   C++-isms in the header and missing exports. Usage: tarvos_c_api_test DATA_DIR */
#include <stdio.h>
#include <string.h>

#include "tarvos.h"

static int g_nPassed = 0;
static int g_nFailed = 0;

static void Expect(int bCondition, const char* szWhat) {
  if (bCondition) {
    ++g_nPassed;
  } else {
    ++g_nFailed;
    printf("FAILED: %s (last error: %s)\n", szWhat, TARVOS_GetLastErrorMsg());
  }
}

int main(int argc, char** argv) {
  int handle;
  const char* szText;
  if (argc != 2) {
    fprintf(stderr, "usage: %s DATA_DIR\n", argv[0]);
    return 2;
  }
  Expect(TARVOS_NewInstance() == -1, "no instance before start-up");
  Expect(TARVOS_Init(argv[1]) == 1, "start-up on the data directory");
  handle = TARVOS_NewInstance();
  Expect(handle == 1, "first new handle is 1");
  szText = TARVOS_GetResult(1, handle);
  Expect(szText != NULL && szText[0] == '\0', "empty knowledge result before a check");
  Expect(TARVOS_CheckReportF("missing.docx", "", "", 1, 0, false, handle) == NULL, "missing file fails");
  Expect(strcmp(TARVOS_GetLastErrorMsg(), "Cannot open file missing.docx") == 0, "missing file message");
  Expect(TARVOS_DeleteInstance(handle) == 1, "delete");
  Expect(TARVOS_GetResult(1, handle) == NULL, "deleted handle refused");
  Expect(strcmp(TARVOS_GetLastErrorMsg(), "TARVOS not init!") == 0, "deleted handle message");
  TARVOS_Exit();
  printf("%d passed, %d failed\n", g_nPassed, g_nFailed);
  return g_nFailed == 0 ? 0 : 1;
}

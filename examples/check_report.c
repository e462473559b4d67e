/* Checks a document and prints its findings as JSON.
   Build: cc check_report.c $(pkg-config --cflags --libs tarvos) -o check_report
   Run:   ./check_report /usr/share/tarvos report.docx [type] */
#include <stdio.h>
#include <stdlib.h>
#include <tarvos/tarvos.h>

int main(int argc, char** argv) {
  if (argc < 3) {
    fprintf(stderr, "usage: %s DATA_DIR DOCUMENT [TYPE]\n", argv[0]);
    return 2;
  }
  if (TARVOS_Init(argv[1]) != 1) {
    fprintf(stderr, "tarvos %s did not start: %s\n", TARVOS_GetVersion(), TARVOS_GetLastErrorMsg());
    return 1;
  }
  /* Format 1: the result comes back as JSON text, owned by instance 0. */
  const char* result = TARVOS_CheckReportF(argv[2], "", "", argc > 3 ? atoi(argv[3]) : 1, 1, false, 0);
  if (result) puts(result);
  else fprintf(stderr, "check failed: %s\n", TARVOS_GetLastErrorMsg());
  TARVOS_Exit();
  return result ? 0 : 1;
}

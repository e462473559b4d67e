/* Starts the engine, checks one document and prints where the result went.
   Build: cc start_engine.c -I include -L build -ltarvos -o start_engine */
#include <stdio.h>
#include "tarvos.h"

int main(int argc, char** argv) {
  const char* data = argc > 1 ? argv[1] : "build/data";
  const char* report = argc > 2 ? argv[2] : "examples/report.docx";
  if (TARVOS_Init(data) != 1) {
    fprintf(stderr, "start-up failed: %s\n", TARVOS_GetLastErrorMsg());
    return 1;
  }
  const char* result = TARVOS_CheckReportF(report, "", "", 1, 0, false, 0);
  printf("%s\n", result ? result : TARVOS_GetLastErrorMsg());
  TARVOS_Exit();
  return result ? 0 : 1;
}

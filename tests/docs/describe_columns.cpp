// Prints the table of docs/columns.md from the table of columns.

#include <cstdio>

#include <surveydata/gnss/gps_record_columns.h>

int main() {
  std::printf(
      "\n| column | type | unit | can be absent | what it holds |\n|---|---|---|---|---|\n");
  for (const SDI::GPSColumn& column : SDI::GetGPSColumns()) {
    std::printf("| `%s` | %s | %s | %s | %s |\n", column.name, TextOf(column.type), column.unit,
                column.canBeAbsent ? "yes" : "", column.description);
  }
  std::printf("\n");
}

#include "results/tell.h"

#include "form/form1.h"
#include "form/output.h"

void tell_and_show(const std::string& line) {
  tell_on_stderr(line);
  form1.Text1.append(line + "\r\n");
}

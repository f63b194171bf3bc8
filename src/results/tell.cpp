#include "results/tell.h"

#include "form/form1.h"
#include "platform/console.h"

void tell(const std::string& line) {
  platform::write_err(line + "\r\n");
  form1.Text1.append(line + "\r\n");
}

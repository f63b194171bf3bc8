#include "app/program.h"

int main() {
  return run_program();
}

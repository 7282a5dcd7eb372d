#include "run/process.h"
#include "run/rundriver.h"

int main(int argc, char** argv) {
  statecut::prepareProcess();
  return statecut::runMain(argc, argv);
}

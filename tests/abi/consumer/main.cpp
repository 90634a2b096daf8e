// The smallest host: it includes everything, links, and asks for the state count of a file that is not there.
#include <orvio/orvio.h>

int main() {
  ORVFiler filer("no such file");
  int states = -1;
  return ReadNumState(filer.GetFilePath(), &states) == 1 && states == 0 ? 0 : 1;
}

// The smallest host: it includes everything, links, and asks for the state count of a file that is not there.
#include <orvio/orvio.h>

int main() {
  ORVFiler filer;
  return filer.InitReader("no such file") == 0 ? 1 : 0;
}

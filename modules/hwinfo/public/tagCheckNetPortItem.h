// One TCP port that the program wants to listen on. A plain value, any thread.
#pragma once

struct tagCheckNetPortItem {
  int port = 0;
  bool required = false;  // without it a service of the program has to move to another port
};

// korvia-text-textures FOLDER: draws the textures for texts as TGA files into the folder.
#include <QString>
#include <cstdio>

#include "TextTextures.h"

int main(int argc, char** argv) {
  if (argc != 2) {
    std::fputs("usage: korvia-text-textures FOLDER\n", stderr);
    return 2;
  }
  return korvia::writeTextTextures(QString::fromLocal8Bit(argv[1])) ? 0 : 1;
}

#include "storage/keychain.h"

#include <tuple>
#include <unistd.h>

/// savekey IDENTIFIER KEY
int main(int argc, char **argv)
{
    if (argc != 3) {
        return 2;
    }
    // In a trace of the system's calls, the save begins behind this one.
    std::ignore = ::access("/the save begins", F_OK);
    storage::Keychain::save(QString::fromLocal8Bit(argv[2]), QString::fromLocal8Bit(argv[1]));
    return 0;
}

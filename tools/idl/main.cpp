// vrdppo_idl: writes the class server's IDL from the registry, and, for the type-library client
// of the Windows suite, what the registry says the type library must hold:
//   library NAME LIBID
//   class NAME CLSID IID MEMBERS STATE  (public members only: the interface holds no others;
//                                       STATE: the characters of a record's state)
//   member NAME DISPID ARGUMENTS
// Usage: vrdppo_idl [IDL-FILE [EXPECTATIONS-FILE]]; without a file, the IDL goes to stdout.
#include <exception>
#include <fstream>
#include <iostream>
#include <string>

#include "frame/type_library.hpp"
#include "vrdppo/registry.hpp"

namespace {

std::string expectations() {
  std::string out =
      std::string("library ") + vrdppo::kLibraryName + " " + vrdppo::libraryId() + "\n";
  for (const vrdppo::ClassInfo* c : vrdppo::registry::classes()) {
    std::size_t count = 0;
    for (const auto& m : c->members) count += m.isPublic ? 1 : 0;
    out += "class " + c->name + " " + c->classId + " " + c->interfaceId + " " +
           std::to_string(count) + " " + std::to_string(c->layout->stateChars) + "\n";
    for (const auto& m : c->members) {
      if (!m.isPublic) continue;
      out += "member " + m.name + " " + std::to_string(m.dispatchId) + " " +
             std::to_string(m.args.size()) + "\n";
    }
  }
  return out;
}

bool write(const char* path, const std::string& text) {
  std::ofstream out(path, std::ios::binary);
  out << text;
  out.close();
  if (!out) std::cerr << "vrdppo_idl: cannot write " << path << "\n";
  return static_cast<bool>(out);
}

}  // namespace

int main(int argc, char** argv) {
  try {
    const std::string idl = vrdppo::typeLibraryIdl();
    if (argc < 2) {
      std::cout << idl;
      return 0;
    }
    if (!write(argv[1], idl)) return 1;
    if (argc > 2 && !write(argv[2], expectations())) return 1;
    return 0;
  } catch (const std::exception& e) {
    std::cerr << "vrdppo_idl: " << e.what() << "\n";
    return 1;
  }
}

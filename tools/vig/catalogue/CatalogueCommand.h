#pragma once

#include <optional>
#include <string>

#include "tools/vig/catalogue/Catalogue.h"
#include "tools/vig/io/Console.h"
#include "tools/vig/io/Interruption.h"

namespace Brenta::OS::VIG::Tool {

class CommandLine;
class Verb;

struct CatalogueOptions {
    std::string events = "-";  // a file of event records, or "-" for standard input
};

// Adds what the events of a recording have. If it cannot be read, says why and returns the exit status.
std::optional<int> learnFrom(const std::string& events, const Console& console, const Interruption& interruption,
                             Catalogue& catalogue);

// Reads the catalogue in the file, or takes the built-in one if no file is named. If it cannot be read, says why and
// returns the exit status.
std::optional<int> loadCatalogue(const std::string& file, const Console& console, const Interruption& interruption,
                                 Catalogue& catalogue);

// Adds the option that names such a file.
void addCatalogueFile(Verb& verb, std::string& file);

// `vig catalogue` prints which attributes the events of a recording have. Returns the exit status.
int catalogue(const CatalogueOptions& options, const Console& console, const Interruption& interruption);

void addCatalogue(CommandLine& commandLine, CatalogueOptions& options);

}  // namespace Brenta::OS::VIG::Tool

// Drawings of curves, by gnuplot.
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace orvio::program {

struct PlotLine {
  std::string name;
  std::vector<std::optional<double>> values;  ///< one per abscissa; nothing leaves a gap
};

struct LinePlot {
  std::string title, x_label, y_label;
  std::vector<double> x;
  std::vector<PlotLine> lines;
};

/// Draws into a file that ends in .svg or .png; one that exists is replaced when all went well. Throws Trouble.
void DrawLines(const LinePlot& plot, const std::filesystem::path& output);

}  // namespace orvio::program

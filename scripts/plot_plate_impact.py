#!/usr/bin/python3
"""Draws the plate impact run of examples/data from its result file, for scripts/demo.

  plot_plate_impact.py --orv ORV FILE.orv PICTURE.png

Left: the peak displacement of the plate over time. Right: the deformed mesh at the last state, cut open along its
middle. Everything is read through the program orv, as any other script would do it. Units of the run: mm, s.
"""
import argparse
import json
import os
import subprocess

import matplotlib

matplotlib.use("Agg")  # no display needed

import matplotlib.pyplot as plt  # noqa: E402: the backend is chosen before
import numpy as np  # noqa: E402
from mpl_toolkits.mplot3d.art3d import Line3DCollection, Poly3DCollection  # noqa: E402

DISPLACEMENT = "Translational_Displacement"
PLATE = "QUAD8"
POSTS = "LINE3"
EXAGGERATION = 3

# How an element is drawn: its outline in order, or the faces of a solid. Places of nodes in a row, from 0.
OUTLINE = (0, 4, 1, 5, 2, 6, 3, 7)
POLYLINE = (0, 2, 1)
FACES = {
    "HEXA8": ((0, 1, 2, 3), (4, 5, 6, 7), (0, 1, 5, 4), (1, 2, 6, 5), (2, 3, 7, 6), (3, 0, 4, 7)),
    "PENTA6": ((0, 1, 2), (3, 4, 5), (0, 1, 4, 3), (1, 2, 5, 4), (2, 0, 3, 5)),
}

INK = "#2b3440"
ACCENT = "#b5305f"
STEEL = (0.72, 0.76, 0.80)


class ResultFile:
    """A result file, seen through orv."""

    def __init__(self, orv, path):
        self._orv, self._path = orv, path

    def times(self):
        """Time of each state in seconds: the first index column."""
        return np.array([state["index"][0] for state in self._ask("info")["states"]])

    def values(self, variable, state=0):
        """Node id to its vector. State 0: constant values."""
        answer = self._ask("values", "--var", variable, "--state", str(state))
        return {row["id"]: np.array(row["values"]) for block in answer["blocks"] for row in block["rows"]}

    def elements(self):
        """Element type to the node ids of its elements."""
        return {group["type"]: [row["nodes"] for row in group["rows"]] for group in self._ask("elements")["groups"]}

    def _ask(self, command, *arguments):
        run = subprocess.run([self._orv, command, self._path, *arguments, "--json"], stdout=subprocess.PIPE, check=True)
        return json.loads(run.stdout)


def peak_displacements(file, states, nodes):
    """Largest displacement of the nodes, one per state."""
    peaks = []
    for state in range(1, states + 1):
        values = file.values(DISPLACEMENT, state)
        peaks.append(max(np.linalg.norm(values[node]) for node in nodes))
    return np.array(peaks)


def surface(solids):
    """Faces that belong to one solid only, as lists of node ids."""
    seen = {}
    for kind, elements in solids.items():
        for nodes in elements:
            for face in FACES[kind]:
                corners = [nodes[place] for place in face]
                seen.setdefault(frozenset(corners), []).append(corners)
    return [faces[0] for faces in seen.values() if len(faces) == 1]


def behind_the_cut(elements, coordinates):
    """Elements in the half that is drawn."""
    return [nodes for nodes in elements if np.mean([coordinates[node][1] for node in nodes]) > 0]


def style(axes):
    for side in ("top", "right"):
        axes.spines[side].set_visible(False)
    for side in ("left", "bottom"):
        axes.spines[side].set_color(INK)
    axes.grid(color="#e3e7eb", linewidth=0.8)
    axes.set_axisbelow(True)


def draw_history(axes, milliseconds, peaks):
    # The undeformed plate at rest is no state of the file.
    milliseconds, peaks = np.insert(milliseconds, 0, 0), np.insert(peaks, 0, 0)
    axes.fill_between(milliseconds, peaks, color=ACCENT, alpha=0.10, linewidth=0)
    axes.plot(milliseconds, peaks, color=ACCENT, linewidth=2.2)
    axes.plot(milliseconds[-1], peaks[-1], "o", color=ACCENT, markersize=7)
    axes.annotate(f"{peaks[-1]:.2f} mm", (milliseconds[-1], peaks[-1]), xytext=(-8, 6), textcoords="offset points",
                  ha="right", va="bottom", color=ACCENT, fontweight="bold")
    axes.set(xlim=(0, milliseconds[-1] * 1.03), ylim=(0, peaks[-1] * 1.12), xlabel="Time [ms]",
             ylabel="Peak displacement [mm]")
    axes.set_title("Peak displacement of the plate", loc="left", pad=12)
    style(axes)


def draw_mesh(axes, elements, coordinates, displacements, colours):
    place = {node: xyz + EXAGGERATION * displacements[node] for node, xyz in coordinates.items()}
    length = {node: np.linalg.norm(vector) for node, vector in displacements.items()}

    plate = behind_the_cut(elements[PLATE], coordinates)
    solids = {kind: behind_the_cut(elements[kind], coordinates) for kind in FACES if kind in elements}
    projectile = surface(solids)
    # One collection for all: it is what sorts its faces by their distance.
    faces = [[place[nodes[corner]] for corner in OUTLINE] for nodes in plate]
    paint = [colours.to_rgba(np.mean([length[node] for node in nodes])) for nodes in plate]
    solid = [np.array([place[node] for node in nodes]) for nodes in projectile]
    faces += solid
    paint += [steel(face) for face in solid]
    edges = (0.1, 0.13, 0.17, 0.45)
    # The axes would clip at a square that is narrower than the mesh.
    axes.add_collection3d(Poly3DCollection(faces, facecolors=paint, edgecolors=edges, linewidths=0.4, clip_on=False))

    posts = [[place[nodes[corner]] for corner in POLYLINE] for nodes in elements[POSTS]]
    paint = [colours.to_rgba(np.mean([length[node] for node in nodes])) for nodes in elements[POSTS]]
    axes.add_collection3d(Line3DCollection(posts, colors=paint, linewidths=5, capstyle="round", clip_on=False))
    frame(axes, np.array(list(place.values())))


def steel(face):
    """Grey of a flat face, lighter on top than on its sides."""
    normal = np.cross(face[1] - face[0], face[2] - face[0])
    upright = abs(normal[2]) / np.linalg.norm(normal)
    sideways = abs(normal[0]) / np.linalg.norm(normal)
    return (*np.array(STEEL) * (0.92 + 0.12 * upright - 0.14 * sideways), 1)


def frame(axes, points):
    low, high = points.min(axis=0), points.max(axis=0)
    low[1] = 0  # the cut
    axes.set(xlim=(low[0], high[0]), ylim=(low[1], high[1]), zlim=(low[2], high[2]))
    axes.set_box_aspect(high - low, zoom=1.27)  # a millimetre is as long in every direction
    axes.set(xticks=(-100, -50, 0, 50, 100), yticks=(0, 50, 100), zticks=(0, 40, 80))
    axes.set_xlabel("x [mm]", labelpad=14)
    axes.set_ylabel("y [mm]", labelpad=6)
    axes.set_zlabel("z [mm]", labelpad=0)
    for axis in (axes.xaxis, axes.yaxis, axes.zaxis):
        axis.pane.set_visible(False)
        axis._axinfo["grid"].update(color="#e3e7eb", linewidth=0.8)
    axes.view_init(elev=24, azim=-68)


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--orv", default="orv", help="the program orv")
    parser.add_argument("file")
    parser.add_argument("picture")
    arguments = parser.parse_args()

    file = ResultFile(arguments.orv, arguments.file)
    times, coordinates, elements = file.times() * 1000, file.values("COORDINATE"), file.elements()
    peaks = peak_displacements(file, len(times), {node for nodes in elements[PLATE] for node in nodes})

    plt.rcParams.update({"font.family": "DejaVu Sans", "font.size": 11, "text.color": INK, "axes.labelcolor": INK,
                         "xtick.color": INK, "ytick.color": INK, "axes.titlesize": 12.5, "axes.titleweight": "bold"})
    figure = plt.figure(figsize=(15, 7), facecolor="white")
    figure.suptitle("Drop-weight impact on a clamped plate", x=0.045, y=0.965, ha="left", fontsize=18,
                    fontweight="bold")
    draw_history(figure.add_axes((0.045, 0.11, 0.27, 0.70)), times, peaks)

    axes = figure.add_axes((0.31, -0.03, 0.56, 0.92), projection="3d")
    colours = plt.cm.ScalarMappable(matplotlib.colors.Normalize(0, peaks[-1]), "plasma_r")
    draw_mesh(axes, elements, coordinates, file.values(DISPLACEMENT, len(times)), colours)
    figure.text(0.37, 0.845, f"Deformed mesh at {times[-1]:.3f} ms, cut open at y = 0", fontsize=12.5,
                fontweight="bold")
    figure.text(0.37, 0.81, f"deformation drawn {EXAGGERATION} times as large; projectile in grey", fontsize=10.5)
    bar = figure.colorbar(colours, cax=figure.add_axes((0.945, 0.24, 0.011, 0.48)))
    bar.set_label("Displacement [mm]")
    bar.outline.set_visible(False)

    os.makedirs(os.path.dirname(os.path.abspath(arguments.picture)), exist_ok=True)
    figure.savefig(arguments.picture, dpi=120)


if __name__ == "__main__":
    main()

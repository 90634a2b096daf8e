"""Reads a VTKHDF sidecar with VTK and compares what it shows, at every step, with what orv prints of the result file.

Run by scripts/try-link, with the Python that belongs to the VTK. Nothing here knows how the sidecar is made: arrays are
told apart by their names, rows by the ids beside them, and the order of the nodes by the edges that VTK sees in a cell.
Exit codes: 0 equal, 1 differences, 2 trouble.
"""

import json
import subprocess
import sys

import numpy
from vtkmodules.util.numpy_support import vtk_to_numpy
from vtkmodules.vtkCommonExecutionModel import vtkStreamingDemandDrivenPipeline
from vtkmodules.vtkIOHDF import vtkHDFReader

TENSOR = ("XX", "YY", "ZZ", "XY", "YZ", "XZ")
PARTS = {".re": "_real", ".im": "_imag"}


def ask(orv, *arguments):
    run = subprocess.run([orv, *arguments, "--json"], capture_output=True, text=True, check=False)
    if run.returncode != 0:
        raise RuntimeError(run.stderr.strip())
    return json.loads(run.stdout)


def number(value):
    return float(value)  # texts such as "nan" stand for what JSON has no word for


def plain(name):
    return name.replace("/", "_").replace(".", "_")


def axes_of(label):
    return "".join(sorted(label.upper()[-2:].translate(str.maketrans("123", "XYZ"))))


def in_vtk_order(labels):
    ends = [axes_of(label) for label in labels]
    if len(labels) == 6 and sorted(ends) == sorted(TENSOR):
        return [ends.index(axes) for axes in TENSOR]
    return list(range(len(labels)))


class Source:
    """What orv tells of a result file."""

    def __init__(self, orv, path):
        self.orv, self.path = orv, path
        self.info = ask(orv, "info", path)
        self.groups = ask(orv, "elements", path)["groups"]
        self.layers = {}  # the largest number of a variable's layers, on the cells
        for result in self.info["results"]:
            if result["section"] == "multi-state":
                continue
            key = result["variable"], result["entity"] == "NODE"
            self.layers[key] = max(self.layers.get(key, 1), result.get("layers", 1))

    def variables(self):
        names = []
        for result in self.info["results"]:
            shown = result["entity"] == "NODE" or any(g["type"] == result["entity"] for g in self.groups)
            if shown and result["variable"] != "COORDINATE" and result["section"] != "multi-state":
                names.append(result["variable"])
        return sorted(set(names))

    def coordinates(self):
        block = ask(self.orv, "values", self.path, "--var", "COORDINATE")["blocks"][0]
        return {row["id"]: [number(v) for v in row["values"]] for row in block["rows"]}

    def states_of(self, variable):
        states = set()
        for result in self.info["results"]:
            if result["variable"] == variable:
                states.update(result.get("states", []))
        return states

    def arrays(self, variable, state):
        """{(on points, name): {(entity, id): values}} of a variable at a state."""
        arrays = {}
        answer = ask(self.orv, "values", self.path, "--var", variable, "--states", str(state))
        for block in answer["blocks"]:
            on_points = block["entity"] == "NODE"
            labels = block["columns"]
            parts = {"": list(range(len(labels)))}
            if labels and labels[0].endswith(".re"):
                parts = {p: [i for i, c in enumerate(labels) if c.endswith(p)] for p in PARTS}
            for row in block["rows"]:
                several = self.layers[variable, on_points] > 1
                layer = f"_layer{row['layer']}" if several else ""
                for part, columns in parts.items():
                    chosen = [labels[i].removesuffix(part) for i in columns]
                    values = [number(row["values"][columns[i]]) for i in in_vtk_order(chosen)]
                    name = plain(variable + layer + PARTS.get(part, ""))
                    arrays.setdefault((on_points, name), {})[block["entity"], row["id"]] = values
        return arrays


class Comparison:
    def __init__(self, source, sidecar):
        self.source = source
        self.differences = []
        self.reader = vtkHDFReader()
        self.reader.AddObserver("ErrorEvent", lambda *_: self.differ("VTK tells of an error"))
        self.reader.SetFileName(sidecar)
        self.reader.UpdateInformation()
        information = self.reader.GetOutputInformation(0)
        key = vtkStreamingDemandDrivenPipeline.TIME_STEPS()
        self.times = list(information.Get(key)) if information.Has(key) else []
        self.arrays = self.values = self.cells = self.edges = 0

    def differ(self, text):
        self.differences.append(text)

    def grid_at(self, time):
        if time is None:
            self.reader.Update()
        else:
            self.reader.UpdateTimeStep(time)
        return self.reader.GetOutput()

    def run(self):
        states = [state["state"] for state in self.source.info["states"]]
        if len(self.times) != len(states) and not (len(states) == 1 and not self.times):  # VTK has no choice of one
            self.differ(f"{len(self.times)} steps for {len(states)} states")
        for time, state in zip(self.times or [None], states or [None]):
            grid = self.grid_at(time)
            data = {True: grid.GetPointData(), False: grid.GetCellData()}
            keys = self.rows_of(data)
            if state == (states or [None])[0]:
                self.compare_mesh(grid, keys)
            self.compare_state(data, keys, state)

    def rows_of(self, data):
        """The ids of the points, and of the cells in the order in which orv lists elements."""
        nodes = [("NODE", int(i)) for i in vtk_to_numpy(data[True].GetArray("id"))]
        elements = [(g["type"], row["id"]) for g in self.source.groups for row in g["rows"]]
        shown = [int(i) for i in vtk_to_numpy(data[False].GetArray("id"))]
        if [i for _, i in elements] != shown:
            self.differ("the ids of the cells are others")
        parts = [row["part"] for g in self.source.groups for row in g["rows"]]
        if parts != [int(i) for i in vtk_to_numpy(data[False].GetArray("part"))]:
            self.differ("the parts of the cells are others")
        return {True: nodes, False: elements}

    def compare_state(self, data, keys, state):
        seen = {(True, "id"), (False, "id"), (False, "part")}
        for variable in self.source.variables():
            states = self.source.states_of(variable)
            if states and state not in states:
                continue
            for (on_points, name), rows in self.source.arrays(variable, state).items():
                seen.add((on_points, name))
                self.compare_array(data[on_points].GetArray(name), keys[on_points], rows, f"{name} at state {state}")
        for on_points, place in data.items():
            for i in range(place.GetNumberOfArrays()):
                array = place.GetArray(i)
                if (on_points, array.GetName()) in seen:
                    continue
                self.arrays += 1
                if not numpy.isnan(vtk_to_numpy(array)).all():
                    self.differ(f"{array.GetName()} at state {state} has values that the state lacks")

    def compare_array(self, array, keys, rows, what):
        if array is None:
            self.differ(f"{what} is missing")
            return
        self.arrays += 1
        shown = vtk_to_numpy(array).reshape(array.GetNumberOfTuples(), array.GetNumberOfComponents())
        expected = numpy.full(shown.shape, numpy.nan)
        for place, key in enumerate(keys):
            if key in rows:
                expected[place] = rows[key]
        self.values += expected.size
        if not numpy.array_equal(shown.astype(float), expected, equal_nan=True):
            self.differ(f"{what}: {(shown != expected).sum() - numpy.isnan(expected).sum()} values differ")

    def compare_mesh(self, grid, keys):
        coordinates = self.source.coordinates()
        points = vtk_to_numpy(grid.GetPoints().GetData())
        expected = numpy.array([coordinates[i] for _, i in keys[True]])
        if not numpy.array_equal(points[:, : expected.shape[1]].astype(float), expected):
            self.differ("the coordinates differ")
        elements = [row["nodes"] for g in self.source.groups for row in g["rows"]]
        for place in range(grid.GetNumberOfCells()):
            self.compare_cell(grid.GetCell(place), elements[place], keys[True], points)

    def compare_cell(self, cell, nodes, point_keys, points):
        """The nodes are those of the element, and the third point of an edge lies between its ends."""
        self.cells += 1
        used = [point_keys[cell.GetPointId(i)][1] for i in range(cell.GetNumberOfPoints())]
        if sorted(used) != sorted(nodes):
            self.differ(f"a cell has the nodes {used}, its element {nodes}")
        for i in range(cell.GetNumberOfEdges()):
            edge = [points[cell.GetEdge(i).GetPointId(k)].astype(float) for k in range(cell.GetEdge(i).GetNumberOfPoints())]
            if len(edge) != 3:
                continue
            self.edges += 1
            length = numpy.linalg.norm(edge[1] - edge[0])
            if numpy.linalg.norm(edge[2] - (edge[0] + edge[1]) / 2) > 0.3 * length:
                self.differ(f"the middle of edge {i} of a cell of the nodes {used} is not between its ends")


def main():
    orv, result, sidecar = sys.argv[1:4]
    comparison = Comparison(Source(orv, result), sidecar)
    comparison.run()
    for text in comparison.differences[:20]:
        print(f"{sidecar}: {text}")
    print(
        f"{sidecar}: {max(len(comparison.times), 1)} steps, {comparison.arrays} arrays with {comparison.values} values, "
        f"{comparison.cells} cells, {comparison.edges} edges with a middle: {len(comparison.differences)} differences"
    )
    return 1 if comparison.differences else 0


if __name__ == "__main__":
    try:
        sys.exit(main())
    except (RuntimeError, KeyError, OSError) as error:
        print(f"try_link: {error}", file=sys.stderr)
        sys.exit(2)

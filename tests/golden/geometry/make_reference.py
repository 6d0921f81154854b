#!/usr/bin/env python3
"""Computes reference meshes in single precision and writes reference.txt next to this file.

Every formula is written out here on its own, for whole grids at a time, operation by operation in the order in
which the generator must do them. Sines, cosines and arctangents are taken in double precision and rounded, so
they can differ from a C library's single-precision result by one unit in the last place; the tests allow for
that. Lens data comes from lens_tables.txt.

One case in reference.txt:
    mesh lens width height a b fixed     (a, b: angles in degrees; 0 where a mesh has none)
    count aspect sum_x sum_y sum_z sum_u sum_v    (sums weighted with 1 + vertex number mod 97)
    index x y z u v                      (NUM_SAMPLES lines)
"""
import os

import numpy as np

F = np.float32
PI = F(3.1415927)
HALF_PI = F(1.5707964)
LENSES = (215, 239, 418, 419, 0)
NUM_SAMPLES = 8
FOLDER = os.path.dirname(os.path.abspath(__file__))


def sin(a):
    return np.sin(np.asarray(a, np.float64)).astype(np.float32)


def cos(a):
    return np.cos(np.asarray(a, np.float64)).astype(np.float32)


def atan2(y, x):
    return np.arctan2(np.asarray(y, np.float64), np.asarray(x, np.float64)).astype(np.float32)


def read_lens_tables():
    words = []
    with open(os.path.join(FOLDER, "lens_tables.txt")) as file:
        for line in file:
            if not line.startswith("#"):
                words += line.split()
    tables = {}
    while words:
        lens, count, step = int(words[0]), int(words[1]), float(words[2])
        domain = [F(i * step) for i in range(count)]
        tables[lens] = (domain, [F(word) for word in words[3 : 3 + count]])
        words = words[3 + count :]
    return tables


TABLES = read_lens_tables()


def radius_of(lens, width, height):
    side = {239: width, 418: height, 419: height}.get(lens, max(width, height))
    return F(0.5) * F(side)


def theta_to_radius(lens):
    table = np.ones(92, np.float32)
    if lens not in TABLES:
        for i in range(90):
            table[i] = F(i) / F(90)
        return table
    domain, rng = TABLES[lens]
    rim = rng[-1] * F(90) / domain[-1]
    for i in range(90):
        j = max(n for n in range(len(domain) - 1) if domain[n] <= F(i))
        low, high = rng[j] / rim, rng[j + 1] / rim
        table[i] = low + (F(i) - domain[j]) * (high - low) / (domain[j + 1] - domain[j])
    return table


def radius_to_theta(lens, radius):
    count = int(radius)
    table = np.zeros(count + 2, np.float32)
    end = F(90)
    if lens not in TABLES:
        for k in range(count):
            table[k] = F(k) / radius * F(90)
    else:
        domain, rng = TABLES[lens]
        if domain[-1] > F(90):
            m = max(n for n in range(len(domain)) if domain[n] <= F(90))
            rim = rng[m] + (rng[m + 1] - rng[m]) * (F(90) - domain[m]) / (domain[m + 1] - domain[m])
        else:
            rim, end = rng[-1], domain[-1]
        heights = np.array(rng)
        for k in range(count):
            h = (rim * F(k)) / radius
            m = max(1, int(np.searchsorted(heights, h, side="right")))
            table[k] = domain[m - 1] + (h - rng[m - 1]) * (domain[m] - domain[m - 1]) / (rng[m] - rng[m - 1])
    table[count] = table[count + 1] = end
    return table


def lookup(table, degrees):
    degrees = np.where(degrees > F(0), np.minimum(degrees, F(90)), F(0)).astype(np.float32)
    i = degrees.astype(np.int32)
    return table[i] + (table[i + 1] - table[i]) * (degrees - i.astype(np.float32))


def triangles(grid):
    """Vertices of a grid (rows, columns, 5), column by column, two triangles a cell."""
    a, b, c, d = grid[:-1, :-1], grid[1:, :-1], grid[1:, 1:], grid[:-1, 1:]
    cells = np.stack([a, b, c, c, d, a], axis=2)
    return cells.transpose(1, 0, 2, 3).reshape(-1, 5)


def grid_of(x, y, z, u, v):
    return np.stack(np.broadcast_arrays(x, y, z, u, v), axis=-1).astype(np.float32)


def fisheye(width, height):
    a = F(width) / F(height)
    one, nil = F(1), F(0)
    corners = {"tl": (-a, one, nil, nil, nil), "bl": (-a, -one, nil, nil, one),
               "br": (a, -one, nil, one, one), "tr": (a, one, nil, one, nil)}
    return np.array([corners[n] for n in ("tl", "bl", "br", "br", "tr", "tl")], np.float32), a


def circular(lens, width, height):
    a = F(width) / F(height)
    s = F(2) * (radius_of(lens, width, height) * F(1.02)) / F(height)
    t = np.arange(0, 361, 2).astype(np.float32) * PI / F(180)
    x = np.clip(s * cos(t), -a, a)
    y = np.clip(s * sin(t), F(-1), F(1))
    rim = grid_of(x, y, F(0), x / a * F(0.5) + F(0.5), F(0.5) - y * F(0.5))
    return np.concatenate([np.array([[0, 0, 0, 0.5, 0.5]], np.float32), rim]), a


def panorama(lens, width, height):
    a = F(width) / F(height)
    k = radius_of(lens, width, height) / F(height // 2)
    rows = np.arange(21, dtype=np.float32)[:, None]
    cols = np.arange(143, dtype=np.float32)[None, :]
    rho = k * lookup(theta_to_radius(lens), (rows * F(-0.56) / F(20) + F(1)) * F(90))
    phi = cols * F(6.2831855) / F(142) + PI
    sp, cp = sin(phi) / a, cos(phi)
    x = F(-14.285715) - cols * F(-14.285715) / F(142)
    y = rows * F(-0.1) + F(1)
    band = triangles(grid_of(x, y, F(0), sp * F(-0.5) * rho + F(0.5), F(0.5) - cp * F(-0.5) * rho))
    second = band.copy()
    second[:, 0] += F(14.285715)
    return np.concatenate([band, second]), F(7.142857)


def texture_of(a_part, b_part, axis, table, k, a):
    d = np.sqrt(b_part * b_part + a_part * a_part)
    q = lookup(table, atan2(d, axis) * F(90) / HALF_PI)
    with np.errstate(invalid="ignore", divide="ignore"):
        u = (k / a * (b_part * q / d) + F(1)) * F(0.5)
        v = (k * (a_part * q / d) + F(1)) * F(0.5)
    return np.where(d > 0, u, F(0.5)), np.where(d > 0, v, F(0.5))


def strip_texture(alpha, e, rho, table, k, a):
    cr, sr = cos(rho), sin(rho)
    se, ce = sin(e), cos(e)
    a_part = cr * ce - sr * (se * cos(alpha))
    b_part = -(se * cos(alpha) * cr) - sr * ce
    return texture_of(a_part, b_part, -(se * sin(alpha)), table, k, a)


def multi_panorama(lens, rotation, elevation, width, height, triple):
    a = F(width) / F(height)
    k = radius_of(lens, width, height) / F(height // 2)
    table = theta_to_radius(lens)
    rotation, elevation = F(rotation), F(elevation)
    rows = np.arange(31, dtype=np.float32)[:, None]
    half = np.arange(38, dtype=np.float32)[None, :]
    first = half * -PI / F(74)
    alpha = np.concatenate([first, first - HALF_PI], axis=1)
    rho = rotation * -PI / F(180)
    e = elevation * PI / F(180) + F(0.9424778) + rows * F(0.0418879)
    u, v = strip_texture(alpha, e, rho, table, k, a)
    y = np.concatenate([-(half * F(0.027027028) - F(1)) - F(0.5), half * F(0.027027028) - F(0.5)], axis=1)
    g = rows * F(0.026666667) - F(0.4)
    shift = F(0.8) if triple else F(0.4)
    x = np.concatenate([np.repeat(g - shift, 38, axis=1), np.repeat(shift - g, 38, axis=1)], axis=1)
    grid = grid_of(x, y, F(0), u, v)
    mesh = triangles(grid)
    if not triple:
        return mesh, F(2.5)
    middle = grid[:, :38].copy()
    middle[..., 0] += F(0.8)
    if elevation != 0:
        e = F(0.9424778) + rows * F(0.0418879)
        middle[..., 3], middle[..., 4] = strip_texture(first, e, rho + HALF_PI, table, k, a)
    else:
        u, v = grid[:, :38, 3], grid[:, :38, 4]
        middle[..., 3] = F(0.5) - (v - F(0.5)) / a
        middle[..., 4] = a * (u - F(0.5)) + F(0.5)
    return np.concatenate([mesh, triangles(middle)]), F(2.5)


def wall(lens, tilt, rotation, fixed, width, height):
    a = F(width) / F(height)
    k = radius_of(lens, width, height) / F(height // 2)
    tilt, rotation = F(tilt), F(rotation)
    tau = tilt * PI / F(180)
    col_start, col_step, row_start, row_step = F(0), F(-0.034906585), F(0), F(0.034906585)
    if not fixed:
        col_start = np.abs(tilt) * PI / F(180)
        col_step = -((np.abs(F(2) * tilt) + F(180)) * PI / F(180)) / F(90)
        row_step = (F(2) * np.abs(tau) + PI) / F(90)
        row_start = F(-2) * tau if tau > 0 else F(0)
    rows = np.arange(91, dtype=np.float32)[:, None]
    cols = np.arange(91, dtype=np.float32)[None, :]
    beta = col_start + col_step * cols
    rho = rotation * -PI / F(180)
    e = row_start + row_step * rows
    c1, s1, c2, s2, se, ce = cos(tau), sin(tau), cos(rho), sin(rho), sin(e), cos(e)
    p = c1 * ce - s1 * se * sin(beta)
    q = s1 * ce + c1 * se * sin(beta)
    u, v = texture_of(c2 * p - s2 * se * cos(beta), -(se * cos(beta) * c2) - s2 * p, -q,
                      theta_to_radius(lens), k, a)
    grid = grid_of(cols * F(0.022222223) - F(1), F(2) * rows / F(90) - F(1), q, u, v)
    return triangles(grid), F(2.5)


class Quadrant:
    """Left upper quadrant of the virtual camera's disc: vertices are pixel offsets until the very end."""

    def __init__(self, lens, width, height):
        self.width, self.height = width, height
        self.radius = radius_of(lens, width, height)
        self.table = radius_to_theta(lens, self.radius)
        self.bands = []
        r = self.radius
        y0, x0 = min(F(height) * F(0.5), r), min(F(width) * F(0.5), r)
        columns = [(F(2) * x0 / F(60)) * F(i) - x0 for i in range(30)] + [F(0)]
        rows = [y0 + y0 * F(-2) / F(60) * F(j) for j in range(30)] + [F(0)]
        edge, above = -np.sqrt(r * r - y0 * y0), y0
        for y in rows[1:]:
            new_edge = max(-np.sqrt(r * r - y * y), columns[0])
            m = next(i for i, x in enumerate(columns) if x > new_edge)
            x = columns[m]
            if x <= edge:
                band = [(new_edge, y), (x, y), (x, np.sqrt(r * r - x * x))]
                m += 1
                while columns[m] < edge:
                    self.quad(band, columns[m], above, y)
                    m += 1
                self.quad(band, edge, above, y)
            else:
                band = [(new_edge, y), (edge, y), (edge, above)]
                self.quad(band, x, above, y)
            for x in columns[m:]:
                self.quad(band, x, above, y)
            self.bands.append(self.project(np.array(band, np.float32)))
            edge, above = new_edge, y
        for band in self.bands:
            for n in (-4, -2, -1):
                band[n, 0], band[n, 3] = F(0), F(0.5)
        last = self.bands[-1]
        for n in range(len(last)):
            if n % 6 in (0, 1, 4):
                last[n, 1], last[n, 4] = F(0), F(0.5)

    def quad(self, band, x, y, y2):
        top, bottom = band[-1], band[-2]
        new_top = (x, min(np.sqrt(self.radius * self.radius - x * x), y))
        band += [top, bottom, new_top, bottom, (x, y2), new_top]

    def project(self, points):
        x, y = points[:, 0], points[:, 1]
        w, h = F(self.width), F(self.height)
        s = np.sqrt(x * x + y * y) * (F(-0.5) / self.radius) + F(1.5)
        px, py = np.clip(s * x, -w / F(2), w / F(2)), np.clip(s * y, -h / F(2), h / F(2))
        d = np.sqrt(px * px + py * py)
        k = d.astype(np.int32)
        f = d - k.astype(np.float32)
        theta = (self.table[k + 1] * f + self.table[k] * (F(1) - f)) * PI / F(180)
        phi = atan2(py, px)
        u = (px + F(self.width // 2) + F(1)) / w
        v = (F(self.height // 2) - py) / h
        return grid_of(sin(theta) * cos(phi), sin(theta) * sin(phi), -cos(theta), u, v)


def mirrored(band, x, y):
    band = band[::-1].copy() if x else band.copy()
    if x:
        band[:, 0] = -band[:, 0]
        band[:, 3] = F(0.5) - (band[:, 3] - F(0.5))
    if y:
        band[:, 1] = -band[:, 1]
        band[:, 4] = F(1) - band[:, 4]
    return band


def vcam(lens, width, height):
    bands = Quadrant(lens, width, height).bands
    parts = [mirrored(band, x, False) for band in bands for x in (False, True)]
    parts += [mirrored(band, x, True) for band in reversed(bands) for x in (False, True)]
    return np.concatenate(parts), F(1)


def cases():
    sizes = ((1920, 1920), (2144, 1944), (3360, 3000), (640, 480), (1080, 1920), (1489, 1361))
    for w, h in sizes:
        yield ("fisheye", 0, w, h, 0, 0, 0), fisheye(w, h)
    for lens in LENSES:
        for w, h in sizes:
            yield ("circular", lens, w, h, 0, 0, 0), circular(lens, w, h)
            yield ("vcam", lens, w, h, 0, 0, 0), vcam(lens, w, h)
        for w, h in sizes[1:5]:
            yield ("panorama", lens, w, h, 0, 0, 0), panorama(lens, w, h)
        for w, h in sizes[1::2]:
            for a, b in ((0, 0), (37.5, -20), (-123.25, 54), (200, -54), (90, 0)):
                for name in ("dual", "triple"):
                    yield (name, lens, w, h, a, b, 0), multi_panorama(lens, a, b, w, h, name == "triple")
        for w, h in sizes[:2]:
            for a, b in ((0, 0), (0, 33), (10, 0), (10, -71), (-25.5, 33)):
                for fixed in (0, 1):
                    yield ("wall", lens, w, h, a, b, fixed), wall(lens, a, b, bool(fixed), w, h)


def main():
    with open(os.path.join(FOLDER, "reference.txt"), "w") as file:
        for number, (key, (mesh, aspect)) in enumerate(cases()):
            count = len(mesh)
            weights = 1.0 + np.arange(count) % 97
            sums = (mesh.astype(np.float64) * weights[:, None]).sum(axis=0)
            file.write(" ".join(str(part) for part in key) + "\n")
            file.write("%d %.9g " % (count, aspect) + " ".join("%.6f" % s for s in sums) + "\n")
            for k in range(NUM_SAMPLES):
                index = (count - 1) * k // (NUM_SAMPLES - 1) if k in (0, NUM_SAMPLES - 1) else \
                    (k * 7919 + number * 131) % count
                file.write("%d " % index + " ".join("%.9g" % value for value in mesh[index]) + "\n")


if __name__ == "__main__":
    main()

#!/usr/bin/python3
"""Writes tests/data/sun-places.inc, rows for SunTimesTest: true rising and setting times from an independent ephemeris.

Needs PyEphem (Debian: python3-ephem), whose sun is VSOP87. A crossing is the geometric elevation
of the sun's centre (no refraction) passing -0.5 degrees. Usage: make_sun_table.py > sun-places.inc
"""

import datetime
import math
import textwrap

import ephem

PLACES = [  # name, latitude, longitude, zone in minutes
    ("default site", 35.738, 139.315, 540),
    ("Sydney", -33.87, 151.21, 600),
    ("Quito", -0.18, -78.47, -300),
    ("Greenwich", 51.48, 0.0, 0),
    ("Reykjavik", 64.15, -21.94, 0),
    ("Delhi", 28.61, 77.21, 330),
    ("Honolulu", 21.31, -157.86, -600),
    ("Apia", -13.83, -171.77, 780),
    ("Ushuaia", -54.8, -68.3, -180),
    ("Nairobi", -1.29, 36.82, 180),
    ("Tromso", 69.65, 18.96, 60),
]
# As in SunTimesTest, with MINUTES. The calculation takes March and April for a later date, by one day in leap years and by two days
# in others; the sun is then looked up for that date.
DATES = [(2019, 1, 3), (2024, 2, 29), (2025, 5, 1), (2023, 5, 31), (2026, 6, 21), (2020, 7, 4),
         (2027, 8, 15), (2024, 9, 22), (2031, 10, 30), (2022, 11, 11), (2025, 12, 21),
         (2024, 3, 1), (2025, 3, 20), (2028, 4, 9), (2026, 4, 30)]
MINUTES = (0, 433, 871, 1300)
THRESHOLD = math.radians(-0.5)
CLOSE = math.radians(0.5)


def observer(latitude, longitude):
    place = ephem.Observer()
    place.lat, place.lon = str(latitude), str(longitude)
    place.pressure = 0
    return place


def elevation(place, midnight, minute):
    place.date = ephem.Date(midnight + minute / 1440)
    return float(ephem.Sun(place).alt)


def geocentric(place, midnight, minute):
    """Degrees, with the sun's parallax of 8.794" taken out."""
    seen = elevation(place, midnight, minute)
    return math.degrees(seen) + 8.794 / 3600 * math.cos(seen)


def stated(latitude, longitude, date, minute):
    """The station's own theory, written a second time: mean elements of Newcomb's epoch 1900
    January 0.5, sidereal time without the equation of the equinoxes. Cut to four decimals."""
    rad, deg = 0.017453292519943278, 57.2957795130822
    sin, cos, fix = math.sin, math.cos, math.trunc
    year, month0, day = date[0], date[1] - 1, date[2]
    universal = 0.0
    for _ in range(minute):
        universal += 1 / 60
    td = universal + 0.5 * (year - 1980) / 3600
    a = fix((14 - month0 + 1) / 12)
    y = year - a + 4800
    j = fix(1461 * y / 4) + fix(367 * (12 * a + month0 + 1 - 2) / 12)
    j = j - fix(3 * fix(y / 100 + 1) / 4) + (day - 2447095.5) + td / 24
    t = j / 36525
    ecc = 0.01675104 - 4.18e-05 * t
    mean = (358.47583 + 35999.04975 * t - 0.00015 * t * t) * rad
    e = 0.0
    for _ in range(5):
        e = mean + ecc * sin(e)
    true = math.atan(math.sqrt((1 + ecc) / (1 - ecc)) * math.tan(e / 2)) * 114.5915590261644
    radius = 1 - ecc * cos(e)
    perigee = 281.22083 + 1.71917331 * t + 0.000453 * t * t
    tau = (t - 1) * rad
    waves = ((20, 32964, 2.757620218151), (18, 19, 2.775073510671), (18, 445267, 3.630284844148),
             (15, 45038, 4.433136300066), (13, 22519, 6.143558967))
    lam = sum(size * cos(rate * tau + phase) for size, rate, phase in waves) * 0.0001
    lam += true + perigee
    node = (259.183275 - 1934.142008 * t + 0.002078 * t * t) * rad
    lam -= (478686 * sin(node) + 569328 / radius) * 1e-08
    tilt = (23.452294 - 0.0130125 * t + 0.0025583 * cos(node)) * rad
    lam *= rad
    declination = math.asin(sin(lam) * sin(tilt))
    ascension = math.asin(sin(lam) * cos(tilt) / cos(declination)) * deg
    if cos(lam) / cos(declination) < 0:
        ascension = 180 - ascension
    sidereal = universal + 12 + 18.64606556 + 2400.051262 * t
    hour = (longitude + 15 * sidereal - ascension) * rad
    phi = latitude * rad
    height = math.asin(sin(declination) * sin(phi) + cos(declination) * cos(hour) * cos(phi))
    return fix(height * deg * 10000) / 10000


def crossings(place, midnight):
    """Last rising and last setting of the universal day, in minutes, or None, and whether the
    sun is so close to the threshold at midnight that a crossing may be counted either way."""
    found = {True: None, False: None}
    before = elevation(place, midnight, 0)
    close = abs(before - THRESHOLD) < CLOSE
    for minute in range(1, 1440):
        after = elevation(place, midnight, minute)
        if (before > THRESHOLD) != (after > THRESHOLD):
            low, high = minute - 1.0, float(minute)
            for _ in range(20):
                middle = (low + high) / 2
                same = (elevation(place, midnight, middle) > THRESHOLD) == (before > THRESHOLD)
                low, high = (middle, high) if same else (low, middle)
            found[after > THRESHOLD] = high
        before = after
        close = close or (minute == 1439 and abs(after - THRESHOLD) < CLOSE)
    return found[True], found[False], close


def looked_up_date(date):
    if date.month not in (3, 4):
        return date
    leap = date.year % 4 == 0
    return date + datetime.timedelta(days=1 if leap else 2)


def text_minutes(universal, close, zone, rising):
    """Minutes from day zero of the shifted text; None where rounding or wrapping is ambiguous."""
    if universal is None:
        return "kAmbiguous" if close else "kNone"
    minute = int(universal) + 1  # the first sampled minute above or below
    # Close to these edges two minutes of tolerance would become an hour or a day.
    if zone % 60 and (minute % 60 < 3 or minute % 60 > 56):
        return "kAmbiguous"
    if minute < 4 or minute > 1435:
        return "kAmbiguous"
    hour = round(zone / 60 + minute // 60)  # ties to even
    total = hour * 60 + minute % 60
    if min(abs(total), abs(total - 1440)) < 4:
        return "kAmbiguous"
    if total >= 1440:
        total -= 1440
    if rising:
        return "kFault" if total < 0 else str(total - 60)
    return str(total % 1440 + 60)


def listed(values):
    return "{" + ", ".join(values) + "}"


def main():
    print("// Written by tests/data/make_sun_table.py from PyEphem; do not edit.")
    for index, (name, latitude, longitude, zone) in enumerate(PLACES):
        place = observer(latitude, longitude)
        rises, sets = [], []
        for number, parts in enumerate(DATES):
            sky = looked_up_date(datetime.date(*parts))
            midnight = ephem.Date((sky.year, sky.month, sky.day))
            rise, down, close = crossings(place, midnight)
            rises.append(text_minutes(rise, close, zone, True))
            sets.append(text_minutes(down, close, zone, False))
            if number == index * 4 % len(DATES):
                day = "{%d, %s, %s}" % (
                    number, listed("%.4f" % geocentric(place, midnight, m) for m in MINUTES),
                    listed("%.4f" % stated(latitude, longitude, parts, m) for m in MINUTES))
        print('{"%s", %s, %s, %d,' % (name, latitude, longitude, zone))
        for minutes in (rises, sets):
            print(textwrap.fill(listed(minutes) + ",", 100, initial_indent=" ",
                                subsequent_indent=" " * 2))
        print(" %s}," % day)


main()

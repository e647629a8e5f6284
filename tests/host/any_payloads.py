"""Plain-text recording on standard output: for every PGN of the catalogue, payloads of random bytes, extremes among
them. The same each time."""
import random
from pathlib import Path

PER_ROW = 30
EXTREMES = [0x00, 0x7F, 0x80, 0xFD, 0xFE, 0xFF]


def main():
    rows = (Path(__file__).parents[2] / "data/pgns.tsv").read_text(encoding="utf-8").splitlines()
    pgns = [row.split("\t")[0] for row in rows if row[:1].isdigit()]
    dice = random.Random(2000)
    for number, pgn in enumerate(pgn for pgn in pgns for _ in range(PER_ROW)):
        size = dice.choice([8, 8, 20, 60, 200])
        payload = [dice.choice(EXTREMES) if dice.random() < 0.4 else dice.randrange(256) for _ in range(size)]
        data = ",".join(f"{byte:02x}" for byte in payload)
        print(f"2026-09-10T{number // 3600:02}:{number // 60 % 60:02}:{number % 60:02}.000Z,2,{pgn},7,255,{size},{data}")


if __name__ == "__main__":
    main()

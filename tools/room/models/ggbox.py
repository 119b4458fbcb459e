"""The Game Gear's box."""
from art.boxes import case

case('ggbox', (72, 100, 10), (0.13, 0.13, 0.15))

"""The Master System's box."""
from art.boxes import case

case('smsbox', (72, 103, 11), (0.16, 0.16, 0.18))

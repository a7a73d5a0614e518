# Plants the faults that make counter_broken out of counter: an unknown name behind tabs, a time
# without a unit, and a character in place of a direction.
s/^      elsif enable = /\t\t\telsif enabled = /
s/^        count <= next_value(count/\t\t\t\tcount <= next_value(count/
s/\(constant period .* := 10\) ns;/\1;/
s/^    way <= down;/    way <= '0';/

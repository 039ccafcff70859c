-- Which machines have free memory slots?
--
-- Slots less modules, for each memory array, and the names of the empty slots as the firmware tells them. Firmware
-- may count slots that the board does not have, and has arrays that are not for main memory: see use_. Slots of
-- cards are not collected.

WITH latest AS (SELECT h.name AS machine, r.* FROM host h JOIN run r ON r.id =
    (SELECT max(n.id) FROM run n WHERE n.host_id = h.id AND n.collected_at = h.last_seen)),
  used AS (SELECT run_id, group_component_id AS array_id, count(*) AS modules FROM memory_array_module
    GROUP BY run_id, group_component_id)
SELECT l.machine, a.tag, a.use_, a.slots, coalesce(u.modules, 0) AS modules, a.slots - coalesce(u.modules, 0) AS free_slots,
  a.empty_slots, a.maximum_capacity_bytes
FROM latest l JOIN memory_array a ON a.run_id = l.id LEFT JOIN used u ON u.run_id = a.run_id AND u.array_id = a.id
WHERE a.slots IS NULL OR a.slots > coalesce(u.modules, 0) OR a.empty_slots IS NOT NULL
ORDER BY free_slots DESC, l.machine, a.tag;

-- For these machines that is not the whole truth.
WITH asked(class) AS (VALUES ('MOLTA_MemoryArray'), ('MOLTA_PhysicalMemory'), ('MOLTA_MemoryArrayModule')),
  latest AS (SELECT h.name AS machine, r.* FROM host h JOIN run r ON r.id =
    (SELECT max(n.id) FROM run n WHERE n.host_id = h.id AND n.collected_at = h.last_seen))
SELECT l.machine, a.class,
  CASE s.state WHEN 'complete' THEN l.state ELSE coalesce(s.state, 'not known to its plugins') END AS state,
  coalesce(s.reason, l.reason) AS reason
FROM latest l CROSS JOIN asked a LEFT JOIN class_state s ON s.run_id = l.id AND s.class = a.class
WHERE coalesce(s.state, '') <> 'complete' OR l.reason_code IN ('file changed', 'instances lost', 'interrupted')
ORDER BY l.machine, a.class;

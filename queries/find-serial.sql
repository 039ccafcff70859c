-- Which machine holds this serial number?
--
-- Set: serial. Capitals and blanks around it do not count. World wide names of disks are looked for too.

WITH parameters AS (SELECT 'ZAD0EXM1' AS serial),
  latest AS (SELECT h.name AS machine, r.* FROM host h JOIN run r ON r.id =
    (SELECT max(n.id) FROM run n WHERE n.host_id = h.id AND n.collected_at = h.last_seen)),
  numbered(run_id, class, thing, serial) AS (
    SELECT id, 'host', machine, (SELECT h.serial FROM host h WHERE h.id = host_id) FROM latest
    UNION ALL SELECT run_id, 'MOLTA_ComputerSystem', product_name, serial_number FROM computer_system
    UNION ALL SELECT run_id, 'MOLTA_BaseBoard', coalesce(model, tag), serial_number FROM base_board
    UNION ALL SELECT run_id, 'MOLTA_MemoryArray', tag, serial_number FROM memory_array
    UNION ALL SELECT run_id, 'MOLTA_PhysicalMemory', coalesce(device_locator, tag), serial_number FROM physical_memory
    UNION ALL SELECT run_id, 'MOLTA_DiskDrive', device_id, serial_number FROM disk_drive
    UNION ALL SELECT run_id, 'MOLTA_DiskDrive', device_id, wwn FROM disk_drive
    UNION ALL SELECT run_id, 'MOLTA_USBDevice', device_id, serial_number FROM usb_device
    UNION ALL SELECT run_id, 'MOLTA_Battery', device_id, serial_number FROM battery)
SELECT l.machine, n.class, n.thing, n.serial, l.collected_at
FROM parameters p JOIN numbered n ON upper(trim(n.serial)) = upper(trim(p.serial)) JOIN latest l ON l.id = n.run_id
ORDER BY l.machine, n.class, n.thing;

-- For these machines that is not the whole truth.
WITH asked(class) AS (VALUES ('MOLTA_ComputerSystem'), ('MOLTA_BaseBoard'), ('MOLTA_MemoryArray'),
    ('MOLTA_PhysicalMemory'), ('MOLTA_DiskDrive'), ('MOLTA_USBDevice'), ('MOLTA_Battery')),
  latest AS (SELECT h.name AS machine, r.* FROM host h JOIN run r ON r.id =
    (SELECT max(n.id) FROM run n WHERE n.host_id = h.id AND n.collected_at = h.last_seen))
SELECT l.machine, a.class,
  CASE s.state WHEN 'complete' THEN l.state ELSE coalesce(s.state, 'not known to its plugins') END AS state,
  coalesce(s.reason, l.reason) AS reason
FROM latest l CROSS JOIN asked a LEFT JOIN class_state s ON s.run_id = l.id AND s.class = a.class
WHERE coalesce(s.state, '') <> 'complete' OR l.reason_code IN ('file changed', 'instances lost', 'interrupted')
ORDER BY l.machine, a.class;
